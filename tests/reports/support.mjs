// Finished requests in a private home, and the reports that the built program writes on them.
import { execFile, execFileSync } from 'node:child_process';
import { mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join, resolve } from 'node:path';
import { platform } from 'node:process';
import { deflateSync } from 'node:zlib';

import { environmentOf, supportIn } from '../support/home.mjs';

const server = join(resolve(process.env.CORVANE_BIN ?? 'build/release/bin'), 'corvane-mcp');
const program = join(resolve(process.env.CORVANE_CTL_BIN ?? 'build/release/bin'), 'corvanectl');

export const requestId = '0b5f3c1e-7a52-4f0e-9d59-2f1f5c7b9a10';

/** Names and texts that a careless writer trips over. */
export const evil = [
  '<script>window.hacked = true</script>',
  '</style></title><img src=x onerror="window.hacked = true">',
  "\"'&amp; &lt;b&gt; ]]> <!-- -->",
  'emoji 🛒 and 日本語 and العربية',
  'two\nlines and a tab\there',
  'bell \u0007 escape \u001b[2J and \u202e turned',
  'unpaired \ufffe and \uffff',
  '| a table | *stars* _lines_ `ticks` [link](javascript:alert(1)) # no heading',
];

/** The same as reports show them on one line. */
export const shown = (text) =>
  text
    .replace(/[ \t\n\r]+/g, ' ')
    .replace(/[\u0000-\u001f\u007f-\u009f\u202e]/g, (c) => `\\u${c.charCodeAt(0).toString(16).padStart(4, '0')}`);

export const makeStep = (index, members = {}) => ({
  index,
  title: 'TAP',
  description: `Tap button ${index}`,
  status: 'passed',
  durationSeconds: 0.25,
  healedByAI: false,
  ...members,
});

export const makeTest = (testName, steps, members = {}) => ({
  testId: testName,
  testName,
  status: 'passed',
  durationSeconds: steps.length / 4,
  steps,
  ...members,
});

export const makeResult = (members) => ({
  schemaVersion: 3,
  requestId,
  source: 'run_test',
  status: 'passed',
  terminal: true,
  updatedAt: '2026-01-31T12:00:00Z',
  projectName: 'Shop',
  platform: 'iOS',
  ...members,
});

/** What PNG checks its chunks with. */
function crc(bytes) {
  let value = ~0;
  for (const byte of bytes) {
    value ^= byte;
    for (let bit = 0; bit < 8; bit += 1) value = (value >>> 1) ^ (value & 1 ? 0xedb88320 : 0);
  }
  return ~value >>> 0;
}

/** A screen of a phone: bars of one colour above the other, the same for the same `seed`. */
function screen(seed) {
  const [width, height] = [390, 844];
  const row = 1 + 3 * width;
  const pixels = Buffer.alloc(row * height, 250);
  for (let y = 0; y < height; y += 1) {
    pixels[y * row] = 0;
    const bar = Math.floor(y / 40);
    const length = (bar * 7919 + seed * 104729) % width;
    pixels.fill((bar * 53 + seed * 31) % 200, y * row + 1, y * row + 1 + 3 * length);
  }
  const chunk = (type, data) => {
    const body = Buffer.concat([Buffer.from(type), data]);
    const [length, check] = [Buffer.alloc(4), Buffer.alloc(4)];
    length.writeUInt32BE(data.length);
    check.writeUInt32BE(crc(body));
    return Buffer.concat([length, body, check]);
  };
  const header = Buffer.from([0, 0, 0, 0, 0, 0, 0, 0, 8, 2, 0, 0, 0]);
  header.writeUInt32BE(width, 0);
  header.writeUInt32BE(height, 4);
  return Buffer.concat([
    Buffer.from('\x89PNG\r\n\x1a\n', 'latin1'),
    chunk('IHDR', header),
    chunk('IDAT', deflateSync(pixels)),
    chunk('IEND', Buffer.alloc(0)),
  ]);
}

/** The most memory that a process has held so far, in bytes; on macOS what it holds now. */
function memoryOf(process) {
  const kilobytes =
    platform === 'darwin'
      ? execFileSync('ps', ['-o', 'rss=', '-p', `${process}`], { encoding: 'utf8' })
      : /VmHWM:\s+(\d+)/.exec(readFileSync(`/proc/${process}/status`, 'utf8'))?.[1];
  return Number(kilobytes ?? 0) * 1024;
}

export class Home {
  /** A home that is gone after test `t`. */
  constructor(t) {
    this.folder = mkdtempSync(join(tmpdir(), 'corvane-reports-'));
    t.after(() => rmSync(this.folder, { recursive: true, force: true }));
  }

  /** Captures of so many steps, each with a tap before it; their folder. */
  capture(name, steps, screens = 8) {
    const folder = join(this.folder, name);
    mkdirSync(folder);
    for (let i = 0; i < screens; i += 1) writeFileSync(join(folder, `${i}.png`), screen(i));
    const frame = (stepIndex, status, image, touches) => ({
      stepIndex,
      status,
      imageFileName: `${image % screens}.png`,
      ...(touches && { touches }),
    });
    const frames = Array.from({ length: steps }, (_, step) => [
      frame(step, 'beforeStep', step, [{ x: 0.5, y: 0.5 }]),
      frame(step, 'afterStep', step + 1),
    ]).flat();
    writeFileSync(join(folder, 'session.json'), JSON.stringify({ frames }));
    return folder;
  }

  /** Puts a result where the server finds it. */
  finish(result) {
    const results = join(supportIn(this.folder), 'AgentResults');
    mkdirSync(results, { recursive: true });
    writeFileSync(join(results, `${requestId}.json`), JSON.stringify(result));
  }

  /**
   * Writes a report of that form ("junit", "html", "markdown") on a result: its file and text, how
   * the program ended, and the most memory that it took.
   */
  async report(form, result) {
    this.finish(result);
    const file = join(this.folder, `report.${form}`);
    const child = execFile(program, ['--server', server, 'report', requestId, `--${form}`, file], {
      env: { ...environmentOf(this.folder), ASAN_OPTIONS: 'quarantine_size_mb=1' },
    });
    let peak = 0;
    const watch = setInterval(() => {
      try {
        peak = Math.max(peak, memoryOf(child.pid));
      } catch {
        // It has ended.
      }
    }, 50);
    let errors = '';
    child.stderr.on('data', (text) => (errors += text));
    const status = await new Promise((ended) => child.on('close', ended));
    clearInterval(watch);
    if (![0, 1, 3].includes(status)) throw new Error(`corvanectl ended with ${status}: ${errors}`);
    return { file, status, peak, text: readFileSync(file, 'utf8') };
  }
}
