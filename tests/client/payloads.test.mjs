// The published schema of create_test and the server judge the same payloads independently; here
// they have to agree.
import assert from 'node:assert/strict';
import { existsSync, readdirSync, readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';

import Ajv2020 from 'ajv/dist/2020.js';

import { call, connect } from './support.mjs';

const folder = join(import.meta.dirname, 'payloads');
const docs = join(import.meta.dirname, '..', '..', 'docs');

/** The payloads of the files whose names begin with `prefix`, by file name. */
function payloads(prefix) {
  const files = readdirSync(folder).filter((name) => name.startsWith(prefix));
  assert.notEqual(files.length, 0, prefix);
  return files.map((name) => [name, JSON.parse(readFileSync(join(folder, name), 'utf8'))]);
}

/** A connection that dispatches without an app, and the compiled schema of create_test. */
async function connectForPayloads(t) {
  const connection = await connect(t, { app: false, env: { CORVANE_MCP_SUPPRESS_LAUNCH: '1' } });
  const { tools } = await connection.client.listTools();
  const schema = tools.find((tool) => tool.name === 'create_test').inputSchema;
  const satisfies = new Ajv2020({ strict: false, allErrors: true }).compile(schema);
  return { ...connection, satisfies };
}

test('accepted payloads satisfy the schema and are dispatched', async (t) => {
  const { client, support, satisfies } = await connectForPayloads(t);
  for (const [name, payload] of payloads('accepted-')) {
    assert.ok(satisfies(payload), `${name}: ${JSON.stringify(satisfies.errors)}`);
    const result = await call(client, 'create_test', payload);
    assert.equal(result.isError, false, `${name}: ${result.text}`);
    const file = /\n {2}File: +(.*)\n/.exec(result.text)[1];
    assert.ok(existsSync(file), name);
    const written = JSON.parse(readFileSync(file, 'utf8'));
    assert.equal(written.tests[0].interactions.length, payload.interactions.length, name);
  }
  assert.equal(readdirSync(join(support, 'AgentImports')).length, payloads('accepted-').length);
});

test('payloads that break the schema are refused by the server too', async (t) => {
  const { client, support, satisfies } = await connectForPayloads(t);
  for (const [name, payload] of payloads('refused-by-schema-')) {
    assert.ok(!satisfies(payload), name);
    const result = await call(client, 'create_test', payload);
    assert.equal(result.isError, true, `${name}: ${result.text}`);
  }
  assert.deepEqual(readdirSync(join(support, 'AgentImports')), []);
});

test('payloads that break only rules satisfy the schema and are refused', async (t) => {
  const { client, support, satisfies } = await connectForPayloads(t);
  for (const [name, payload] of payloads('refused-by-rules-')) {
    assert.ok(satisfies(payload), `${name}: ${JSON.stringify(satisfies.errors)}`);
    const result = await call(client, 'create_test', payload);
    assert.equal(result.isError, true, `${name}: ${result.text}`);
    assert.match(result.text, /^(VALIDATION FAILED|'\w+' )/, name);
  }
  assert.deepEqual(readdirSync(join(support, 'AgentImports')), []);
});

test('the payload file that the docs show comes from arguments that satisfy the schema', async (t) => {
  const { client, satisfies } = await connectForPayloads(t);
  const text = readFileSync(join(docs, 'files.md'), 'utf8');
  const shown = JSON.parse(/```json\n(\{.*"interactions".*\})\n```/.exec(text)[1]);
  const { createdAt, requestId, tests, version, ...rest } = shown;
  const { index, name, interactions } = tests[0];
  const payload = { ...rest, testName: name, testIndex: index, interactions };
  assert.ok(satisfies(payload), JSON.stringify(satisfies.errors));
  const result = await call(client, 'create_test', payload);
  assert.equal(result.isError, false, result.text);
  const file = /\n {2}File: +(.*)\n/.exec(result.text)[1];
  const written = JSON.parse(readFileSync(file, 'utf8'));
  assert.deepEqual(
    { ...written, createdAt, requestId },
    { ...shown, clientName: 'client-tests' },
  );
  assert.match(written.requestId, /^[0-9a-f-]{36}$/);
  assert.equal(written.version, version);
});

test('every payload that a session or the demo has accepted satisfies the schema', async (t) => {
  const { client, satisfies } = await connectForPayloads(t);
  const root = join(import.meta.dirname, '..', '..');
  const sessions = readdirSync(join(root, 'tests', 'sessions')).filter((name) => name.endsWith('.session'));
  const files = ['scripts/demo', ...sessions.map((name) => `tests/sessions/${name}`)];
  let accepted = 0;
  for (const file of files) {
    for (const payload of jsonObjectsIn(readFileSync(join(root, file), 'utf8'))) {
      if (!payload.interactions || !payload.testName) continue;
      const result = await call(client, 'create_test', payload);
      if (result.isError) continue;
      accepted += 1;
      assert.ok(satisfies(payload), `${file}: ${JSON.stringify(satisfies.errors)}`);
    }
  }
  assert.ok(accepted >= 5, `${accepted} payloads`);
});

/** Every outermost text between braces on the lines of `text` that is a JSON object. */
function* jsonObjectsIn(text) {
  for (let start = text.indexOf('{'); start >= 0; start = text.indexOf('{', start + 1)) {
    const end = closingBrace(text, start);
    if (end === 0) continue;
    try {
      yield JSON.parse(text.slice(start, end + 1));
      start = end;
    } catch {
      // Not JSON; an inner one may be.
    }
  }
}

/** Where the brace at `start` is closed; 0 when it is not. */
function closingBrace(text, start) {
  let depth = 0;
  for (let at = start; at < text.length; at += 1) {
    if (text[at] === '{') depth += 1;
    if (text[at] === '}') depth -= 1;
    if (depth === 0) return at;
  }
  return 0;
}
