// What any client relies on: the handshake, the tool list, errors, and many calls at once.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { ErrorCode } from '@modelcontextprotocol/sdk/types.js';
import Ajv2020 from 'ajv/dist/2020.js';

import { call, connect } from './support.mjs';

const noApp = { app: false };

test('the server introduces itself', async (t) => {
  const { client, log } = await connect(t, noApp);
  assert.deepEqual(client.getServerVersion(), { name: 'corvane-mcp', version: '0.2.0' });
  assert.deepEqual(client.getServerCapabilities(), { tools: { listChanged: false } });
  await client.ping();
  await client.close();
  assert.match(log(), /\[INFO\] Client identified: client-tests\n/);
});

test('every tool is listed once, in order, with a valid schema for its arguments', async (t) => {
  const { client } = await connect(t, noApp);
  const { tools } = await client.listTools();
  const names = tools.map((tool) => tool.name);
  assert.deepEqual(names, [...new Set(names)].sort());
  const ajv = new Ajv2020({ strict: false });
  for (const tool of tools) {
    assert.ok(tool.description.length > 0, tool.name);
    assert.equal(tool.inputSchema.type, 'object', tool.name);
    assert.ok(ajv.validateSchema(tool.inputSchema), `${tool.name}: ${ajv.errorsText()}`);
    ajv.compile(tool.inputSchema);
  }
});

test('health answers with the folders of this home', async (t) => {
  const { client, support } = await connect(t, noApp);
  const health = await call(client, 'health', {});
  assert.equal(health.isError, false);
  assert.match(health.text, /^corvane-mcp is healthy\.\n {2}Corvane\.app: {6}<not found>\n/);
  assert.ok(health.text.includes(`\n  AgentResults:     ${support}/AgentResults\n`));
});

test('protocol errors keep their codes', async (t) => {
  const { client } = await connect(t, noApp);
  await assert.rejects(client.callTool({ name: 'Health' }), {
    code: ErrorCode.InvalidParams,
    message: /Unknown tool: Health/,
  });
  await assert.rejects(client.callTool({ name: 'run_test' }), {
    code: ErrorCode.InvalidParams,
    message: /run_test requires arguments/,
  });
});

test('five hundred waiting calls delay no ping and are all answered', async (t) => {
  const { client } = await connect(t, noApp);
  const requestId = '00000000-0000-4000-8000-000000000001';
  let answered = 0;
  const waiting = Array.from({ length: 500 }, async () => {
    const result = await call(client, 'get_result', { requestId, waitSeconds: 2 });
    answered += 1;
    return result;
  });
  for (let i = 0; i < 50; ++i) await client.ping();
  assert.equal(answered, 0);
  for (const result of await Promise.all(waiting)) {
    assert.match(result.text, /^error:unknown_request_id\n\n/);
  }
});

test('closing the input answers the calls in flight before the server exits', async (t) => {
  const { client, log } = await connect(t, noApp);
  const requestId = '00000000-0000-4000-8000-000000000002';
  const waiting = call(client, 'get_result', { requestId, waitSeconds: 1 });
  await client.ping();
  client.transport._process.stdin.end();
  assert.match((await waiting).text, /^error:unknown_request_id/);
  await new Promise((resolve) => (client.onclose = resolve));
  assert.match(log(), /stdin closed; draining 1 in-flight tool call\(s\)\n/);
  assert.match(log(), /stdin closed; exiting\n$/);
});
