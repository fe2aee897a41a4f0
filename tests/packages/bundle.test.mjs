import assert from 'node:assert/strict';
import { readFileSync, rmSync } from 'node:fs';
import { join, resolve } from 'node:path';
import { test } from 'node:test';

import { run } from './cleanroot.mjs';
import { expectNotices, file, rootWithStandIn, target, use, version } from './support.mjs';

const bundle = file(`corvane-mcp-${version}.mcpb`);
const mcpb = (...args) => run(resolve('node_modules/.bin/mcpb'), args);

test('the bundle is valid, works where a client unpacks it, and carries the licences', (t) => {
  // With the shell that its launcher is written for, and corvanectl, which is no part of it.
  const root = rootWithStandIn(t, 'dash', 'coreutils');
  const archive = file(`corvane-mcp-${version}-${target}.tar.gz`);
  run('tar', ['-xzf', archive, '--strip-components=1', '-C', join(root.path, 'usr')]);
  const folder = join(root.path, 'home/user/bundle');
  mcpb('unpack', bundle, folder);
  assert.match(mcpb('validate', join(folder, 'manifest.json')), /Manifest schema validation passes/);

  const manifest = JSON.parse(readFileSync(join(folder, 'manifest.json'), 'utf8'));
  assert.equal(manifest.version, version);
  assert.equal(manifest.server.entry_point, 'server/corvane-mcp');
  assert.equal(manifest.tools.length, 12);
  assert.deepEqual(manifest.tools.find((tool) => tool.name === 'get_status'), {
    name: 'get_status', description: 'shows what Corvane.app is doing right now',
  });
  const { command } = manifest.server.mcp_config;
  use(root, command.replace('${__dirname}', '/home/user/bundle'), '/usr/bin/corvanectl');
  expectNotices(readFileSync(join(folder, 'NOTICES.txt'), 'utf8'));
  rmSync(folder, { recursive: true });
});
