// How code of an agent, here `runUntilPassed`, fares with an app that misbehaves.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { startBench } from './bench.mjs';

/** The code under test: runs a test again while it fails. Gives the statuses. */
async function runUntilPassed(bench, project, name, attempts) {
  const statuses = [];
  while (statuses.length < attempts && !statuses.includes('passed')) {
    statuses.push((await bench.follow(await bench.run(project, name))).status);
  }
  return statuses;
}

test('a flaky test passes at last', async (t) => {
  const bench = await startBench(t, 'flaky-suite.json');
  const statuses = await runUntilPassed(bench, 'Corner Shop', 'Browse the catalogue', 5);
  assert.deepEqual(statuses, ['failed', 'failed', 'passed']);
});

test('a blocked exploration says what is needed', async (t) => {
  const bench = await startBench(t, 'crashing-app.json');
  const { text } = await bench.call('explore_flow', {
    projectName: 'Trail Log',
    goal: 'Record a walk',
  });
  const result = await bench.follow(/requestId: +([0-9a-f-]{36})/.exec(text)[1]);
  assert.equal(result.status, 'blocked');
  assert.deepEqual(result.blocked, { code: 'notSignedIn', message: 'Nobody is signed in.' });
});

test('a torn result is an error until it is whole', async (t) => {
  const bench = await startBench(t, 'slow-machine.json');
  const requestId = await bench.run('Pocket Notes', 'Write a note');
  await bench.lookUntil(requestId, (text) => text.startsWith('error:result_unreadable'));
  assert.equal((await bench.follow(requestId)).status, 'passed');
});
