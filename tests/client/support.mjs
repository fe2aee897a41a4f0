// A private home with the built server and the stand-in for Corvane.app, and a client joined to it.
import { execFileSync } from 'node:child_process';
import { mkdirSync, mkdtempSync, readFileSync, symlinkSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join, resolve } from 'node:path';

import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport } from '@modelcontextprotocol/sdk/client/stdio.js';

import { environmentOf, remove, supportIn } from '../support/home.mjs';

const bin = resolve(process.env.CORVANE_BIN ?? 'build/release/bin');
const appBundle = join(resolve(process.env.CORVANE_APP_BIN ?? bin), 'Corvane.app');

/** The stand-in's program. */
export const standIn = join(appBundle, 'Contents', 'MacOS', 'Corvane');

/** Steps that take a hundredth of a second, so that a whole run is over in a moment. */
const fast = { stepSeconds: 0.01, buildSeconds: 0.01, coldStartSeconds: 0, heartbeatSeconds: 1 };

/**
 * Connects the official client to a freshly started server in a private home. With `app` the
 * stand-in is installed there, for the server to find and launch; with `captures` its runs leave
 * pictures. Everything is gone after test `t`.
 */
export async function connect(
  t,
  { app = true, captures = false, outcomes = {}, env = {} } = {},
) {
  const home = mkdtempSync(join(tmpdir(), 'corvane-client-'));
  const support = supportIn(home);
  mkdirSync(join(support, 'StandIn'), { recursive: true });
  writeFileSync(join(support, 'StandIn', 'settings.json'), JSON.stringify({ ...fast, captures, outcomes }));
  if (app) {
    mkdirSync(join(home, 'Applications'));
    symlinkSync(appBundle, join(home, 'Applications', 'Corvane.app'));
  }
  const environment = { ...environmentOf(home), ...env };
  const transport = new StdioClientTransport({
    command: join(bin, 'corvane-mcp'),
    env: environment,
    stderr: 'ignore',
    maxBufferSize: 256 * 1024 * 1024,
  });
  const client = new Client({ name: 'client-tests', version: '1.0.0' });
  await client.connect(transport);
  t.after(async () => {
    await client.close();
    // Two calls at once may have launched the app twice, and on a busy machine the second one may
    // come up only after the first one has gone.
    await remove(home, () => app && execFileSync(standIn, ['--quit'], { env: environment }));
  });
  const log = () => readFileSync(join(home, 'Library', 'Logs', 'Corvane', 'mcp.log'), 'utf8');
  return { client, environment, home, support, log };
}

/** Calls a tool; its result with `text`, the first text block. */
export async function call(client, name, args, options) {
  const result = await client.callTool({ name, arguments: args }, undefined, options);
  return { ...result, text: result.content[0]?.text };
}

/** The request id that a dispatching tool answered with. */
export function requestIdOf(result) {
  return /requestId: +([0-9a-f-]{36})/.exec(result.text)[1];
}

/** The JSON object behind the header of a get_result answer. */
export function snapshotOf(result) {
  return JSON.parse(result.text.slice(result.text.indexOf('\n\n{') + 2));
}

/** Follows a request to its end, as an agent would; collects the progress on the way. */
export async function follow(client, requestId, extra = {}) {
  const progress = [];
  for (;;) {
    const result = await call(
      client,
      'get_result',
      { requestId, waitSeconds: 20, ...extra },
      { onprogress: (update) => progress.push(update) },
    );
    if (result.text.startsWith('status: ') && result.text.split('\n')[0].endsWith('(terminal)')) {
      return { ...result, progress, snapshot: snapshotOf(result) };
    }
    if (result.isError) throw new Error(result.text);
  }
}
