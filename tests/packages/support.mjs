// The packages under test, and what is asked of each.
import assert from 'node:assert/strict';
import { mkdirSync, readFileSync, readdirSync, symlinkSync, writeFileSync } from 'node:fs';
import { join, resolve } from 'node:path';
import { arch } from 'node:process';

import { CleanRoot, dependenciesOf } from './cleanroot.mjs';

const folder = resolve('../../build/packages');
export const file = (name) => join(folder, name);
/** The packages whose names match. */
export const files = (pattern) => readdirSync(folder).filter((name) => pattern.test(name)).sort();

/** The version that the sources name. */
const sources = readFileSync('../../CMakeLists.txt', 'utf8');
export const [, version] = /^project\(corvane-mcp VERSION (\S+)/m.exec(sources);
/** What Debian, npm and scripts/release call this machine. */
const machines = { x64: ['amd64', 'x64', 'linux-x86_64'], arm64: ['arm64', 'arm64', 'linux-arm64'] };
export const [debianName, npmName, target] = machines[arch];

const standIn = file(`corvane-mcp-standin_${version}_${debianName}.deb`);

/** A clean root with the stand-in in it, where the server looks for the app, and more packages. */
export function rootWithStandIn(t, ...more) {
  const root = new CleanRoot(t, ...dependenciesOf(standIn), ...more);
  root.dpkg('--install', standIn);
  const home = join(root.path, 'home/user');
  mkdirSync(join(home, 'Applications'), { recursive: true });
  symlinkSync('/usr/libexec/corvane-mcp/Corvane.app', join(home, 'Applications/Corvane.app'));
  const settings = join(home, '.local/share/Corvane/StandIn');
  mkdirSync(settings, { recursive: true });
  writeFileSync(join(settings, 'settings.json'), JSON.stringify({
    stepSeconds: 0.01, buildSeconds: 0.01, coldStartSeconds: 0, heartbeatSeconds: 1,
  }));
  return root;
}

/** Asks the server for its health, and has the stand-in run a suite. */
export function use(root, server, corvanectl) {
  const ctl = (...args) => {
    const { status, stdout, stderr } = root.run(corvanectl, '--server', server, ...args);
    assert.equal(status, 0, `corvanectl ${args[0]}: ${stdout}${stderr}`);
    return stdout;
  };
  assert.equal(root.run(server, '--version').stdout, `corvane-mcp ${version}\n`);
  assert.match(ctl('health'), /^corvane-mcp is healthy\.\n {2}Corvane\.app: +\/home\/user\/Applications\//);
  assert.match(ctl('run', 'Corner Shop', '--suite', 'Smoke', '--follow'), /passed/);
}

/** Expects the licences of all libraries that are inside the programs. */
export function expectNotices(text) {
  const libraries = readFileSync('../../release/packages.txt', 'utf8').split('\n')
    .filter((line) => /^(source|headers) /.test(line)).map((line) => line.split(' ')[1]);
  assert.ok(libraries.length > 5);
  // Debian's texts leave out what every Debian has.
  const leftOut = [...text.matchAll(/common-licenses\/(Apache[\w.-]*\w)/g)].map(([, name]) => name);
  for (const name of [...libraries, ...leftOut]) assert.ok(text.includes(`\n--- ${name}\n\n`), name);
  for (const words of ['Boost Software License', 'Independent JPEG Group', 'TERMS AND CONDITIONS FOR USE']) {
    assert.ok(text.includes(words), words);
  }
}
