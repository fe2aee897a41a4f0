// A bench for code that talks to corvane-mcp: the server, and the stand-in for Corvane.app with a
// scenario, in a home of their own that is gone after the test. The programs are found in PATH, or
// where CORVANE_MCP and CORVANE_STANDIN say.
import { spawn } from 'node:child_process';
import { existsSync, mkdtempSync, realpathSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { delimiter, dirname, join } from 'node:path';
import { setTimeout } from 'node:timers/promises';
import { fileURLToPath } from 'node:url';

import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport } from '@modelcontextprotocol/sdk/client/stdio.js';

const scenarios = fileURLToPath(new URL('../scenarios', import.meta.url));

const firstThatExists = (places) => {
  const found = places.find((place) => place && existsSync(place));
  if (!found) throw new Error(`there is none of ${places.join(', ')}`);
  return found;
};
const server = realpathSync(
  firstThatExists([
    process.env.CORVANE_MCP,
    ...process.env.PATH.split(delimiter).map((folder) => join(folder, 'corvane-mcp')),
  ]),
);
/** Beside the server in a build, below libexec in an installation. */
const inside = join('Corvane.app', 'Contents', 'MacOS', 'Corvane');
const standIn = firstThatExists([
  process.env.CORVANE_STANDIN,
  join(dirname(server), inside),
  join(dirname(server), '..', 'libexec', 'corvane-mcp', inside),
]);

/**
 * Starts both and connects the official client: `client` for whatever there is to call, `run` to
 * have a test run, `follow` to wait for a request's result. Everything is gone after test `t`.
 */
export async function startBench(t, scenario) {
  const home = mkdtempSync(join(tmpdir(), 'corvane-bench-'));
  // CFFIXED_USER_HOME is what HOME is elsewhere for programs of macOS. The scenario decides whether
  // there is an app, so the server starts none.
  const env = {
    ...process.env,
    HOME: home,
    CFFIXED_USER_HOME: home,
    CORVANE_MCP_SUPPRESS_LAUNCH: '1',
  };
  delete env.XDG_DATA_HOME;
  const app = spawn(standIn, ['--home', home, '--scenario', join(scenarios, scenario)], {
    env,
    stdio: 'inherit',
  });
  const ended = new Promise((resolve) => app.once('exit', resolve));
  const client = new Client({ name: 'bench', version: '1.0.0' });
  await client.connect(new StdioClientTransport({ command: server, env, stderr: 'ignore' }));
  t.after(async () => {
    await client.close();
    app.kill();
    await ended;
    rmSync(home, { recursive: true, force: true });
  });

  /** Calls a tool; its answer with `text`, the first text in it. */
  const call = async (name, args) => {
    const answer = await client.callTool({ name, arguments: args });
    return { ...answer, text: answer.content[0].text };
  };
  /** Has a test run, and gives the request's id at once. */
  const run = async (projectName, testName) => {
    const { text } = await call('run_test', {
      projectName,
      testNames: [testName],
      buildFirst: false,
    });
    return /requestId: +([0-9a-f-]{36})/.exec(text)[1];
  };
  /** What get_result says of a request once `condition` holds of its text. */
  const lookUntil = async (requestId, condition) => {
    for (let tries = 0; tries < 1000; tries += 1) {
      const { text } = await call('get_result', { requestId });
      if (condition(text)) return text;
      await setTimeout(20);
    }
    throw new Error('waited in vain');
  };
  /** The result of a request that has ended. */
  const follow = async (requestId) => {
    const text = await lookUntil(requestId, (each) => /^status: \w+ \(terminal\)/.test(each));
    return JSON.parse(text.slice(text.indexOf('\n\n{') + 2));
  };
  return { client, call, run, lookUntil, follow };
}
