// The schema in the documents, an independent validator and the stand-in agree on what a scenario is.
import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { mkdtempSync, readdirSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { test } from 'node:test';

const require = createRequire(new URL('../client/package.json', import.meta.url));
const Ajv = require('ajv');
const root = new URL('../../', import.meta.url);
const textOf = (name) => readFileSync(new URL(name, root), 'utf8');
const isValid = new Ajv().compile(JSON.parse(textOf('docs/scenario.schema.json')));

/** What the stand-in complains of at its start with a scenario; it does not come to work. */
function complaints(t, scenario) {
  const folder = mkdtempSync(join(tmpdir(), 'corvane-scenario-'));
  t.after(() => rmSync(folder, { recursive: true, force: true }));
  const file = join(folder, 'bench.json');
  writeFileSync(file, JSON.stringify(scenario));
  const { status, stderr } = spawnSync(
    process.env.CORVANE_STANDIN,
    ['--home', join(folder, 'none'), '--scenario', file],
    { encoding: 'utf8' },
  );
  // Its next complaint is that there is no such home.
  return status === 1 ? '' : stderr;
}

/** Every key and every word of a vocabulary in a schema. */
const wordsOf = (schema) => [
  ...Object.keys(schema.properties ?? {}),
  ...(schema.enum ?? []),
  ...Object.values(schema.properties ?? {}).flatMap(wordsOf),
  ...(schema.additionalProperties ? wordsOf(schema.additionalProperties) : []),
];

test('the document describes everything that a scenario can say', () => {
  const text = textOf('docs/scenarios.md');
  const words = wordsOf(JSON.parse(textOf('docs/scenario.schema.json')));
  assert.ok(words.includes('wholeAfterSeconds') && words.includes('buildFailed'));
  assert.deepEqual(words.filter((word) => !new RegExp(`[\`"]${word.replace('$', '\\$')}[\`"]`).test(text)), []);
});

for (const name of readdirSync(new URL('examples/scenarios', root))) {
  if (name.endsWith('-workspace.json')) continue;
  test(`the example ${name} is a scenario`, () => {
    const scenario = JSON.parse(textOf(`examples/scenarios/${name}`));
    assert.ok(isValid(scenario), JSON.stringify(isValid.errors));
  });
}

for (const scenario of [
  {},
  { $schema: 'anything', stepSeconds: 0, ids: 'random', clock: '2026-01-31T12:00:00+01:00' },
  { outcomes: { A: { outcome: 'passed', failedStep: 0, times: 1, tornResult: {} } } },
  { imports: { '*': { outcome: 'failed' } }, explorations: {}, libraryRequests: {} },
]) {
  test(`accepted by both: ${JSON.stringify(scenario)}`, (t) => {
    assert.ok(isValid(scenario), JSON.stringify(isValid.errors));
    assert.equal(complaints(t, scenario), '');
  });
}

for (const scenario of [
  [],
  { speed: 1 },
  { stepSeconds: -0.1 },
  { stepSeconds: 1_000_001 },
  { captures: 'no' },
  { ids: 'byname' },
  { clock: '2026-01-31T12:00:00.5Z' },
  { outcomes: { A: {} } },
  { outcomes: { A: { outcome: 'fulfilled' } } },
  { outcomes: { A: { outcome: 'failed', failedStep: 0.5 } } },
  { outcomes: { A: { outcome: 'failed', times: 0 } } },
  { outcomes: { A: { outcome: 'passed', tornResult: { wholeAfter: 1 } } } },
  { imports: { A: { outcome: 'healed' } } },
  { explorations: { A: { outcome: 'failed', stepSeconds: 1 } } },
  { libraryRequests: { '*': { outcome: 'failed' } } },
]) {
  test(`refused by both: ${JSON.stringify(scenario)}`, (t) => {
    assert.ok(!isValid(scenario));
    assert.match(complaints(t, scenario), /^Corvane: .*bench\.json: line 1, column \d+: /);
  });
}
