// What an agent sees when the app dies, sticks or quits in the middle of its work.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { test } from 'node:test';

import { call, connect, follow, requestIdOf, standIn } from './support.mjs';

const project = 'Corner Shop';
const runOf = (...testNames) => ({ projectName: project, testNames });

/** Waits until the first line of a request's report matches. */
async function firstLine(client, requestId, pattern) {
  for (;;) {
    const result = await call(client, 'get_result', { requestId, waitSeconds: 1 });
    if (pattern.test(result.text.split('\n')[0])) return result;
  }
}

test('an app that dies in mid-run is told, and its run is settled by its next life', async (t) => {
  const { client } = await connect(t, { outcomes: { 'Sign in': { outcome: 'crash' } } });
  const args = { ...runOf('Sign in'), params: { username: 'me', password: 'secret' } };
  const dead = requestIdOf(await call(client, 'run_test', args));
  const orphan = await firstLine(client, dead, /but Corvane\.app is NOT running\)$/);
  assert.match(orphan.text, /\n\nThis run died with the app; it will not progress\. /);
  const status = await call(client, 'get_status', {});
  assert.ok(
    status.text.startsWith(
      'Corvane status (appRunning: false).\n\n' +
        "warning: Corvane.app is not running — the 'active' work in this snapshot died with it and " +
        'will not progress.\n\n{',
    ),
    status.text,
  );
  const described = await call(client, 'describe_project', {});
  assert.ok(
    described.text.includes(
      ').\nwarning: Corvane.app is not running; context reflects the last session and may be ' +
        'stale. run_test/create_test will launch it.\n',
    ),
    described.text,
  );

  const next = requestIdOf(await call(client, 'run_test', runOf('Browse the catalogue')));
  assert.equal((await follow(client, next)).snapshot.status, 'passed');
  const { snapshot } = await follow(client, dead);
  assert.equal(snapshot.status, 'error');
  assert.equal(snapshot.message, 'Corvane quit before the run finished.');
});

test('requests dropped while the app is dead wait for its next life', async (t) => {
  const { client, environment } = await connect(t, {
    outcomes: { 'Browse the catalogue': { outcome: 'hold' } },
  });
  const held = requestIdOf(await call(client, 'run_test', runOf('Browse the catalogue')));
  await firstLine(client, held, /^status: running /);
  execFileSync(standIn, ['--quit'], { env: environment });
  assert.equal((await follow(client, held)).snapshot.status, 'error');

  const status = await call(client, 'get_status', {});
  assert.match(status.text, /^Corvane status \(appRunning: false\)\.\n/);
  const next = requestIdOf(await call(client, 'run_test', runOf('Add to cart and remove')));
  assert.equal((await follow(client, next)).snapshot.status, 'passed');
});

test('a run that sticks can be cancelled', async (t) => {
  const { client } = await connect(t, {
    outcomes: { 'Browse the catalogue': { outcome: 'wedged' } },
  });
  const requestId = requestIdOf(await call(client, 'run_test', runOf('Browse the catalogue')));
  await firstLine(client, requestId, /^status: running /);
  await call(client, 'cancel_run', { requestId });
  assert.equal((await follow(client, requestId)).snapshot.status, 'cancelled');
});
