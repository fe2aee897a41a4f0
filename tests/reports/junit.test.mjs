// The JUnit report is valid, and says the same to two readers that know nothing of each other: libxml2's
// xmllint and Python's parser.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { join } from 'node:path';
import { test } from 'node:test';
import { fileURLToPath } from 'node:url';

import { evil, Home, makeResult, makeStep, makeTest, requestId, shown } from './support.mjs';

const here = fileURLToPath(new URL('.', import.meta.url));
const large = { encoding: 'utf8', maxBuffer: 256 * 1024 * 1024 };
const validate = (file) =>
  execFileSync('xmllint', ['--huge', '--noout', '--schema', join(here, 'junit.xsd'), file], {
    ...large,
    stdio: ['ignore', 'pipe', 'pipe'],
  });
const ask = (file, path) => execFileSync('xmllint', ['--huge', '--xpath', path, file], large).trimEnd();
const read = (file) => JSON.parse(execFileSync(join(here, 'read-junit'), [file], large));

test('tells of every test, whatever its texts', async (t) => {
  const tests = evil.map((text, index) =>
    makeTest(text, [makeStep(0, { description: text, status: 'failed', failureReason: text })], {
      status: index % 2 ? 'failed' : 'warning',
      durationSeconds: index + 0.1234,
    }),
  );
  const { file, status } = await new Home(t).report(
    'junit',
    makeResult({ status: 'failed', message: evil.join(''), tests }),
  );
  assert.equal(status, 1);
  validate(file);
  const { cases, counts } = read(file);
  assert.deepEqual(counts, { tests: 8, failures: 4, errors: 4, skipped: 0 });
  const inXml = (text) => shown(text).replace(/[\ufffe\uffff]/g, '\ufffd');
  evil.forEach((text, index) => {
    const name = inXml(text);
    assert.equal(cases[index].name, name);
    assert.equal(ask(file, `string(//testcase[${index + 1}]/@name)`), name);
    assert.equal(cases[index].outcome, index % 2 ? 'failure' : 'error');
    assert.equal(cases[index].seconds, index + 0.123);
    const message = `step 0 failed: TAP: ${name} — ${name}`;
    assert.equal(cases[index].message, message);
    assert.equal(ask(file, `string(//testcase[${index + 1}]/*[self::failure or self::error]/@message)`), message);
    assert.ok(cases[index].text.startsWith(`step 0 failed: TAP: ${name} (0.3 s)\n`));
    assert.equal(ask(file, `string(//testcase[${index + 1}]/*[1])`), cases[index].text.trimEnd());
  });
});

test('tells how requests of every kind ended', async (t) => {
  const home = new Home(t);
  const expected = [
    [{ status: 'imported', source: 'create_test' }, 'passed'],
    [{ status: 'authored', authoredTests: [{ testId: '1', testName: 'A', stepCount: 2 }] }, 'passed'],
    [{ status: 'extracted', udi: { udiId: '1', name: 'A', stepCount: 2 } }, 'passed'],
    [{ status: 'buildFailed', message: 'no such file' }, 'failure'],
    [{ status: 'importFailed', validationIssues: [] }, 'failure'],
    [{ status: 'blocked', blocked: { code: 'a', message: 'b', url: 'https://c' } }, 'error'],
    [{ status: 'cancelled' }, 'error'],
    [{ status: 'error' }, 'error'],
    [{ status: 'passed', tests: 'of another form' }, 'passed'],
    [{ status: 'from the future', tests: 7 }, 'error'],
  ];
  for (const [members, outcome] of expected) {
    const { file, status } = await home.report('junit', makeResult(members));
    validate(file);
    const { cases } = read(file);
    assert.deepEqual(
      cases.map((each) => [each.name, each.outcome]),
      [[`Request ${requestId}`, outcome]],
    );
    // A build server shows red exactly when the program's exit status does.
    assert.equal(outcome === 'passed', status === 0, members.status);
  }
});

test('takes ten thousand steps', async (t) => {
  const steps = Array.from({ length: 10_000 }, (_, i) => makeStep(i, i === 9_999 ? { status: 'failed' } : {}));
  const { file } = await new Home(t).report(
    'junit',
    makeResult({ status: 'failed', tests: [makeTest('Long', steps, { status: 'failed' })] }),
  );
  validate(file);
  assert.equal(read(file).cases[0].text.trimEnd().split('\n').length, 10_000);
  assert.equal(read(file).cases[0].message, 'step 9999 failed: TAP: Tap button 9999');
});
