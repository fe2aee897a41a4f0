// What an agent does with its workspace, with the official client, the real launch and the stand-in
// for the app: explore, extract, compose, run, ask.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { call, connect, follow, requestIdOf } from './support.mjs';

const project = 'Corner Shop';

/** The JSON object behind the header and the warnings of a tool's text. */
function objectIn(result) {
  return JSON.parse(result.text.slice(result.text.indexOf('\n\n{') + 2));
}

/** The description of the current project as the app publishes it now. */
async function describe(client) {
  const description = objectIn(await call(client, 'describe_project', {}));
  return { ...description, test: (name) => description.project.tests.find((each) => each.name === name) };
}

const bookends = {
  open: [
    { type: 'builtIn', description: '', parameters: { command: 'terminateApplication' } },
    { type: 'builtIn', description: '{{APP_NAME}}', parameters: { command: 'openApplication' } },
  ],
  close: [{ type: 'builtIn', description: '', parameters: { command: 'terminateApplication' } }],
};

function composed(testName, interactions) {
  return {
    projectName: project,
    testName,
    suiteName: 'Account',
    iosProjectPath: '/src/corner-shop',
    bundleIdentifier: 'com.example.cornershop',
    interactions: [...bookends.open, ...interactions, ...bookends.close],
  };
}

test('explore, extract, compose, run and ask: the loop an agent lives', async (t) => {
  const { client } = await connect(t);
  const explored = await follow(
    client,
    requestIdOf(
      await call(client, 'explore_flow', {
        projectName: project,
        maxCreditSpend: 300,
        goal:
          '1. Add an address: tap "Addresses", type "$street", tap "Save", assert it is listed\n' +
          '2. Leave a review: tap "Write a review", type "Fine", assert the review is shown',
      }),
    ),
  );
  assert.equal(explored.snapshot.status, 'authored');
  assert.deepEqual(
    explored.snapshot.authoredTests.map((each) => [each.testName, each.stepCount]),
    [
      ['Add an address', 4],
      ['Leave a review', 3],
    ],
  );

  const authored = (await describe(client)).test('Add an address');
  assert.equal(authored.id, explored.snapshot.authoredTests[0].testId);
  assert.deepEqual(authored.parameterNames, ['street']);

  const extracted = await follow(
    client,
    requestIdOf(
      await call(client, 'extract_udi', {
        projectName: project,
        testName: 'Add an address',
        fromStep: 1,
        toStep: 2,
        udiName: 'Enter an address',
      }),
    ),
  );
  assert.equal(extracted.snapshot.status, 'extracted');
  assert.deepEqual(extracted.snapshot.udi.parameterNames, ['street']);

  const run = await follow(
    client,
    requestIdOf(
      await call(client, 'create_test', composed('Address book', [
        { type: 'reuseSteps', referencedTestName: 'Add an address', fromStep: 0 },
        { type: 'userDefined', udiName: 'Enter an address' },
        { type: 'visualAssert', description: "Is the address 'Via Appia 1' listed?" },
      ])),
    ),
  );
  assert.equal(run.snapshot.status, 'passed', run.text);
  assert.equal(run.snapshot.source, 'create_test');

  const after = await describe(client);
  assert.equal(after.test('Address book').verified, true);
  assert.deepEqual(after.project.suites.at(-1), {
    name: 'Account',
    testIds: [after.test('Address book').id],
  });
  assert.ok(after.userDefinedInteractions.some((udi) => udi.name === 'Enter an address'));

  const status = objectIn(await call(client, 'get_status', {}));
  assert.equal(status.appRunning, true);
  assert.equal(status.activity.active, undefined);
  assert.deepEqual(
    status.recentRequests.map((each) => [each.source, each.status]),
    [
      ['create_test', 'passed'],
      ['extract_udi', 'extracted'],
      ['explore_flow', 'authored'],
    ],
  );
});

test('what the app refuses to import comes back as issues', async (t) => {
  const { client } = await connect(t);
  const dispatched = await call(client, 'create_test', composed('Broken', [
    { type: 'userDefined', udiName: 'No such block' },
  ]));
  assert.equal(dispatched.isError, false, dispatched.text);
  const { snapshot } = await follow(client, requestIdOf(dispatched));
  assert.equal(snapshot.status, 'importFailed');
  assert.deepEqual(
    snapshot.validationIssues.map((issue) => [issue.severity, issue.code, issue.path]),
    [['error', 'invalidEnumValue', 'tests[0].interactions[2].udiName']],
  );
});

test('a budget that runs out keeps the partial test, a library item can be deleted, a map reset', async (t) => {
  const { client } = await connect(t);
  const partial = await follow(
    client,
    requestIdOf(
      await call(client, 'explore_flow', {
        projectName: project,
        maxCreditSpend: 20,
        goal: 'Wish list: tap the heart, tap the tab "Wishes", assert the mug is listed',
      }),
    ),
  );
  assert.equal(partial.snapshot.status, 'warning');
  assert.equal(partial.snapshot.authoredTest.completionPercent, 33);

  for (const [tool, args] of [
    ['delete_udi', { udiName: 'Fill shipping address' }],
    ['reset_world_map', { projectName: project }],
  ]) {
    const { snapshot } = await follow(client, requestIdOf(await call(client, tool, args)));
    assert.equal(snapshot.status, 'deleted');
    assert.equal(snapshot.source, tool);
  }
  const after = await describe(client);
  assert.deepEqual(after.userDefinedInteractions, []);
  assert.equal(after.project.worldMap, undefined);
});
