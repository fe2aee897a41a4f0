// What cmake --install leaves behind, and the target that removes it.
import assert from 'node:assert/strict';
import { existsSync, mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join, resolve } from 'node:path';
import { test } from 'node:test';

import { run } from './cleanroot.mjs';
import { file, target, version } from './support.mjs';

const build = resolve('../../build/ci');
const uninstall = (environment) =>
  run('cmake', ['--build', build, '--target', 'uninstall'], { env: { ...process.env, ...environment } });
const list = (folder) => run('find', ['.', '-type', 'f'], { cwd: folder }).split('\n').filter(Boolean).sort();

function folderFor(t) {
  const folder = mkdtempSync(join(tmpdir(), 'corvane-prefix-'));
  t.after(() => rmSync(folder, { recursive: true, force: true }));
  return folder;
}

/** Installs into a prefix below a folder; the prefix. */
function install(folder) {
  const prefix = join(folder, 'opt/corvane');
  run('cmake', ['--install', build, '--prefix', prefix]);
  return prefix;
}

test('an installation has the layout of the packages', (t) => {
  const prefix = install(folderFor(t));
  const archive = run('tar', ['-tzf', file(`corvane-mcp-${version}-${target}.tar.gz`)]).split('\n')
    .filter((entry) => entry !== '' && !entry.endsWith('/')).map((entry) => entry.replace(/^[^/]*/, '.'));
  const ofStandIn = [
    './libexec/corvane-mcp/Corvane.app/Contents/Info.plist',
    './libexec/corvane-mcp/Corvane.app/Contents/MacOS/Corvane',
    './share/man/man1/corvane_standin.1',
  ];
  // Who builds it brings the libraries along, and with them their licences.
  const ofPackages = ['./share/doc/corvane-mcp/NOTICES.txt'];
  assert.deepEqual([...list(prefix), ...ofPackages].sort(), [...archive, ...ofStandIn].sort());
  uninstall();
});

// Fails when a document or a picture that another one links to is not installed.
test('every link of an installed document leads somewhere', (t) => {
  const prefix = install(folderFor(t));
  const documents = list(prefix).filter((name) => name.endsWith('.md'));
  assert.ok(documents.includes('./share/doc/corvane-mcp/README.md'));
  for (const name of documents) {
    // Neither in code nor to other places than files.
    const text = readFileSync(join(prefix, name), 'utf8').replace(/^(```+)[^]*?^\1/gm, '').replace(/`[^`]*`/g, '');
    for (const [, link] of text.matchAll(/\]\(([^)\s#]+)[^)]*\)/g)) {
      if (/^[a-z]+:/.test(link)) continue;
      assert.ok(existsSync(join(dirname(join(prefix, name)), link)), `${name} links to ${link}`);
    }
  }
  uninstall();
});

// Fails when the folders are left, or those above the prefix go along. Packing a component makes no difference.
test('uninstalling leaves nothing, and says so when there is nothing', (t) => {
  const folder = folderFor(t);
  const prefix = install(folder);
  run('cmake', ['--install', build, '--prefix', folderFor(t), '--component', 'corvane-mcp']);
  uninstall();
  assert.ok(!existsSync(prefix));
  assert.ok(existsSync(dirname(prefix)), 'a folder above the prefix went along');
  assert.throws(uninstall, (error) => error.stdout.includes('Nothing is installed'));
});

// Fails when folders go with what is in them, or a file that is gone already ends it.
test('uninstalling keeps what others have put beside', (t) => {
  const folder = folderFor(t);
  const prefix = join(folder, 'opt/corvane');
  mkdirSync(join(prefix, 'bin'), { recursive: true });
  writeFileSync(join(prefix, 'bin/other'), '');
  install(folder);
  rmSync(join(prefix, 'bin/corvanectl'));
  uninstall();
  assert.deepEqual(list(prefix), ['./bin/other']);
  assert.deepEqual(run('find', ['.', '-type', 'd'], { cwd: prefix }), '.\n./bin\n');
});

test('what was installed below DESTDIR is removed there', (t) => {
  const folder = folderFor(t);
  const environment = { ...process.env, DESTDIR: folder };
  run('cmake', ['--install', build, '--prefix', '/opt/corvane'], { env: environment });
  assert.ok(existsSync(join(folder, 'opt/corvane/bin/corvanectl')));
  uninstall({ DESTDIR: folder });
  assert.ok(!existsSync(join(folder, 'opt/corvane')));
});
