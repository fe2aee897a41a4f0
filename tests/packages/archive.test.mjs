import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { copyFileSync, mkdirSync, mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { test } from 'node:test';

import { run } from './cleanroot.mjs';
import { expectNotices, file, files, rootWithStandIn, target, use, version } from './support.mjs';

// Fails when corvanectl looks for the server elsewhere than beside itself.
test('an archive works where it is unpacked', (t) => {
  const name = `corvane-mcp-${version}-${target}`;
  const root = rootWithStandIn(t, 'libc6');
  const folder = join(root.path, 'opt', name);
  run('mkdir', ['-p', join(root.path, 'opt')]);
  run('tar', ['-xzf', file(`${name}.tar.gz`), '-C', join(root.path, 'opt')]);
  use(root, `/opt/${name}/bin/corvane-mcp`, `/opt/${name}/bin/corvanectl`);
  assert.equal(root.run(`/opt/${name}/bin/corvanectl`, 'health').status, 0);
  expectNotices(readFileSync(join(folder, 'share/doc/corvane-mcp/NOTICES.txt'), 'utf8'));
  rmSync(folder, { recursive: true });
  assert.deepEqual(root.list('opt'), ['opt']);
});

test('the archives of all targets have the same layout', () => {
  const layouts = files(/^corvane-mcp-[\d.]+-.*\.tar\.gz$/).map((name) => {
    const entries = run('tar', ['-tzf', file(name)]).split('\n');
    return entries.map((entry) => entry.replace(/^[^/]*\//, ''));
  });
  assert.ok(layouts.length > 0);
  for (const layout of layouts) assert.deepEqual(layout, layouts[0]);
});

test('a target that has not been built is named with the way to build it', (t) => {
  // The script alone, in a project that has nothing else.
  const project = mkdtempSync(join(tmpdir(), 'corvane-project-'));
  t.after(() => rmSync(project, { recursive: true, force: true }));
  mkdirSync(join(project, 'scripts'));
  copyFileSync('../../scripts/package', join(project, 'scripts/package'));
  const pack = (...args) => {
    const { status, stdout, stderr } = spawnSync(join(project, 'scripts/package'), args, { encoding: 'utf8' });
    return { status, text: stdout + stderr };
  };
  assert.deepEqual(pack('linux-arm64'), {
    status: 1,
    text: "package: build/dist/linux-arm64 is not there; 'scripts/release linux-arm64' makes it\n",
  });
  assert.deepEqual(pack('windows'), {
    status: 1,
    text: 'package: there is no target windows; there are macos-arm64 macos-x86_64 linux-x86_64 linux-arm64\n',
  });
  assert.deepEqual(pack(), {
    status: 1,
    text: 'Not in build/dist, so left out: macos-arm64 macos-x86_64 linux-x86_64 linux-arm64; ' +
      "'scripts/release' makes them\npackage: there is nothing to pack\n",
  });
});

test('every package has its checksum', () => {
  run('sha256sum', ['--check', '--strict', '--quiet', 'SHA256SUMS'], { cwd: file('.') });
  const listed = readFileSync(file('SHA256SUMS'), 'utf8').match(/\S+$/gm);
  assert.deepEqual(listed.sort(), files(/^(?!SHA256SUMS$)/));
});
