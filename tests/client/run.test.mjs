// The road of a test run, with the official client, the real launch and the stand-in for the app.
import assert from 'node:assert/strict';
import { existsSync, readdirSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';

import { call, connect, follow, requestIdOf, snapshotOf } from './support.mjs';

const project = 'Corner Shop';

test('a dispatched run is launched, reported on and passes', async (t) => {
  const { client, home, support } = await connect(t);
  const dispatched = await call(client, 'run_test', {
    projectName: project,
    testNames: ['Browse the catalogue'],
  });
  assert.equal(dispatched.isError, false);
  assert.match(dispatched.text, /^Run request dispatched to Corvane\.\n/);
  assert.ok(
    dispatched.text.includes(`\n  Corvane.app: ${join(home, 'Applications', 'Corvane.app')}\n`),
    dispatched.text,
  );

  const requestId = requestIdOf(dispatched);
  const done = await follow(client, requestId);
  assert.equal(done.snapshot.requestId, requestId);
  assert.equal(done.snapshot.status, 'passed');
  assert.equal(done.snapshot.terminal, true);
  assert.deepEqual(done.snapshot.tests.map((each) => each.testName), ['Browse the catalogue']);
  assert.equal(done.content.length, 1);
  assert.ok(!existsSync(join(support, 'AgentRunRequests', `${requestId}.runrequest.json`)));
});

test('progress is numbered and tells what the run is doing', async (t) => {
  const { client } = await connect(t, {
    outcomes: { 'Browse the catalogue': { outcome: 'hold' } },
  });
  const requestId = requestIdOf(
    await call(client, 'run_test', { projectName: project, testNames: ['Browse the catalogue'] }),
  );
  const progress = [];
  let heldAtAStep;
  const held = new Promise((resolve) => (heldAtAStep = resolve));
  const waiting = call(
    client,
    'get_result',
    { requestId, waitSeconds: 120 },
    {
      timeout: 120_000,
      onprogress: (update) => {
        progress.push(update);
        if (update.message.startsWith('running — step ')) heldAtAStep();
      },
    },
  );
  await held;
  await call(client, 'cancel_run', { requestId });
  const result = await waiting;
  assert.equal(snapshotOf(result).status, 'cancelled');
  assert.deepEqual(
    progress.map((update) => update.progress),
    progress.map((_, index) => index + 1),
  );
});

test('a failing run names the step and the reason', async (t) => {
  const { client } = await connect(t, {
    outcomes: {
      'Browse the catalogue': {
        outcome: 'failed',
        failedStep: 2,
        failureReason: 'The grid stayed empty.',
      },
    },
  });
  const requestId = requestIdOf(
    await call(client, 'run_test', { projectName: project, testNames: ['Browse the catalogue'] }),
  );
  const { snapshot } = await follow(client, requestId);
  assert.equal(snapshot.status, 'failed');
  const failed = snapshot.tests[0].steps.filter((step) => step.status === 'failed');
  assert.deepEqual(
    failed.map((step) => [step.index, step.failureReason]),
    [[2, 'The grid stayed empty.']],
  );
});

test('the pictures of a failed step come with its result', async (t) => {
  const { client } = await connect(t, {
    captures: true,
    outcomes: { 'Browse the catalogue': { outcome: 'failed', failedStep: 1 } },
  });
  const requestId = requestIdOf(
    await call(client, 'run_test', { projectName: project, testNames: ['Browse the catalogue'] }),
  );
  await follow(client, requestId);
  const { content } = await call(client, 'get_result', { requestId, includeStepTrace: true });
  assert.deepEqual(content.map((block) => block.type), ['text', 'text', 'image', 'image']);
  assert.ok(content[1].text.startsWith('step 1 screenshots (before, after) — '), content[1].text);
  for (const { mimeType, data } of content.slice(2)) {
    assert.equal(mimeType, 'image/jpeg');
    assert.deepEqual([...Buffer.from(data, 'base64').subarray(0, 3)], [0xff, 0xd8, 0xff]);
  }
});

test('a queued run is cancelled at once, the active one at its next step', async (t) => {
  const { client } = await connect(t, {
    outcomes: { 'Browse the catalogue': { outcome: 'hold' } },
  });
  const held = requestIdOf(
    await call(client, 'run_test', { projectName: project, testNames: ['Browse the catalogue'] }),
  );
  const queued = requestIdOf(
    await call(client, 'run_test', { projectName: project, testNames: ['Search and filter'] }),
  );
  await call(client, 'cancel_run', { requestId: queued });
  assert.equal((await follow(client, queued)).snapshot.status, 'cancelled');
  await call(client, 'cancel_run', { requestId: held.toUpperCase() });
  assert.equal((await follow(client, held)).snapshot.status, 'cancelled');
});

test('without the app the request waits and says so', async (t) => {
  const { client, support } = await connect(t, { app: false });
  const dispatched = await call(client, 'run_test', { projectName: project, runAll: true });
  assert.match(
    dispatched.text,
    /\n {2}Corvane\.app: <not found> {2}\(LAUNCH FAILED — open Corvane manually\)\n/,
  );
  const requestId = requestIdOf(dispatched);
  assert.deepEqual(readdirSync(join(support, 'AgentRunRequests')), [
    `${requestId}.runrequest.json`,
  ]);
  const pending = await call(client, 'get_result', { requestId });
  assert.match(pending.text, /^status: pending \(Corvane has not picked up the request yet\)\n\n/);

  await call(client, 'cancel_run', { requestId });
  assert.deepEqual(readdirSync(join(support, 'AgentRunRequests')), []);
  const cancelled = await call(client, 'get_result', { requestId });
  assert.match(cancelled.text, /^status: cancelled \(terminal\)\n\n/);
  assert.equal(snapshotOf(cancelled).source, 'run_test');
});
