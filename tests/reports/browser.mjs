// A real Chromium without a window, spoken to through its pipe in the DevTools protocol.
import { spawn } from 'node:child_process';
import { existsSync, mkdtempSync } from 'node:fs';
import { delimiter, join } from 'node:path';
import { tmpdir } from 'node:os';
import { setTimeout as delay } from 'node:timers/promises';
import { pathToFileURL } from 'node:url';

import { remove } from '../support/home.mjs';

const names = ['chromium', 'chromium-browser', 'google-chrome'];
const program = [
  ...(process.env.PATH ?? '').split(delimiter).flatMap((folder) => names.map((name) => join(folder, name))),
  '/Applications/Chromium.app/Contents/MacOS/Chromium',
  '/Applications/Google Chrome.app/Contents/MacOS/Google Chrome',
].find(existsSync);

/** How long anything may take, in milliseconds. */
const patience = 120_000;

/** Ends a browser with its helpers, which would go on writing to the profile after it. */
function killGroup(leader) {
  try {
    process.kill(-leader, 'SIGKILL');
  } catch (error) {
    if (error.code !== 'ESRCH') throw error;
  }
}

export class Browser {
  #nextId = 1;
  #waiting = new Map();
  #rest = Buffer.alloc(0);
  /** What happened in the pages, as the protocol tells it. */
  events = [];

  /** A browser that ends, and whose profile is gone, after test `t`. */
  static async start(t) {
    if (!program) throw new Error('no Chromium is installed; scripts/setup test installs one');
    const browser = new Browser();
    const profile = mkdtempSync(join(tmpdir(), 'corvane-browser-'));
    const flags = ['--headless', '--remote-debugging-pipe', '--disable-gpu', `--user-data-dir=${profile}`];
    // Chromium has no sandbox for the superuser.
    if (process.getuid() === 0) flags.push('--no-sandbox');
    browser.child = spawn(program, flags, {
      detached: true,
      env: { PATH: process.env.PATH, HOME: profile, TMPDIR: profile },
      stdio: ['ignore', 'ignore', 'ignore', 'pipe', 'pipe'],
    });
    const ended = new Promise((resolve) => browser.child.on('exit', resolve));
    browser.child.stdio[4].on('data', (bytes) => browser.#take(bytes));
    browser.child.on('exit', () => {
      for (const { reject } of browser.#waiting.values()) reject(new Error('the browser has ended'));
    });
    t.after(async () => {
      killGroup(browser.child.pid);
      await ended;
      await remove(profile);
    });
    return browser;
  }

  #take(bytes) {
    this.#rest = Buffer.concat([this.#rest, bytes]);
    for (let end = this.#rest.indexOf(0); end >= 0; end = this.#rest.indexOf(0)) {
      const message = JSON.parse(this.#rest.subarray(0, end).toString());
      this.#rest = this.#rest.subarray(end + 1);
      const waiting = this.#waiting.get(message.id);
      this.#waiting.delete(message.id);
      if (!waiting) this.events.push(message);
      else if (message.error) waiting.reject(new Error(message.error.message));
      else waiting.resolve(message.result);
    }
  }

  send(method, params = {}, sessionId = undefined) {
    const id = this.#nextId++;
    this.child.stdio[3].write(`${JSON.stringify({ id, method, params, sessionId })}\0`);
    return new Promise((resolve, reject) => {
      const late = setTimeout(() => reject(new Error(`${method} is not answered`)), patience);
      const ending = (end) => (value) => {
        clearTimeout(late);
        end(value);
      };
      this.#waiting.set(id, { resolve: ending(resolve), reject: ending(reject) });
    });
  }

  /** A page that shows the file, once it has been loaded. */
  async open(file, { scripts = true, width = 1100, height = 900 } = {}) {
    const { targetId } = await this.send('Target.createTarget', { url: 'about:blank' });
    const { sessionId } = await this.send('Target.attachToTarget', { targetId, flatten: true });
    const page = new Page(this, sessionId);
    for (const domain of ['Page', 'Runtime', 'Network', 'Log']) await page.send(`${domain}.enable`);
    await page.send('Emulation.setScriptExecutionDisabled', { value: !scripts });
    await page.resize(width, height);
    await page.send('Page.navigate', { url: pathToFileURL(file).href });
    await page.until('Page.loadEventFired');
    return page;
  }
}

class Page {
  constructor(browser, sessionId) {
    this.browser = browser;
    this.sessionId = sessionId;
  }

  send(method, params) {
    return this.browser.send(method, params, this.sessionId);
  }

  events(method) {
    return this.browser.events.filter((each) => each.sessionId === this.sessionId && each.method === method);
  }

  async until(method) {
    const end = Date.now() + patience;
    while (this.events(method).length === 0) {
      if (Date.now() > end) throw new Error(`${method} does not happen`);
      await delay(10);
    }
  }

  resize(width, height) {
    return this.send('Emulation.setDeviceMetricsOverride', { width, height, deviceScaleFactor: 1, mobile: false });
  }

  /** How the page is shown: `colors` "light" or "dark", `media` "screen" or "print". */
  show({ colors = 'light', media = 'screen' }) {
    return this.send('Emulation.setEmulatedMedia', {
      media,
      features: [{ name: 'prefers-color-scheme', value: colors }],
    });
  }

  /** What an expression, or a function called with `args`, is in the page. */
  async evaluate(expression, ...args) {
    const source = typeof expression === 'function' ? `(${expression})(...${JSON.stringify(args)})` : expression;
    const { result, exceptionDetails } = await this.send('Runtime.evaluate', {
      expression: source,
      awaitPromise: true,
      returnByValue: true,
    });
    if (exceptionDetails) throw new Error(exceptionDetails.exception?.description ?? exceptionDetails.text);
    return result.value;
  }

  async press(key) {
    const text = key === 'Enter' ? '\r' : key.length === 1 ? key : undefined;
    const named = { Enter: 13, Escape: 27, ArrowUp: 38, ArrowDown: 40, Tab: 9 };
    const windowsVirtualKeyCode = named[key] ?? key.toUpperCase().charCodeAt(0);
    const event = { key, windowsVirtualKeyCode };
    await this.send('Input.dispatchKeyEvent', { type: text ? 'keyDown' : 'rawKeyDown', text, ...event });
    await this.send('Input.dispatchKeyEvent', { type: 'keyUp', ...event });
  }

  async type(text) {
    for (const key of text) await this.press(key);
  }

  async click(selector) {
    const at = await this.evaluate((wanted) => {
      const element = document.querySelector(wanted);
      element.scrollIntoView({ block: 'center' });
      const box = element.getBoundingClientRect();
      return { x: box.x + box.width / 2, y: box.y + box.height / 2 };
    }, selector);
    const event = { ...at, button: 'left', clickCount: 1 };
    await this.send('Input.dispatchMouseEvent', { type: 'mousePressed', ...event });
    await this.send('Input.dispatchMouseEvent', { type: 'mouseReleased', ...event });
  }
}
