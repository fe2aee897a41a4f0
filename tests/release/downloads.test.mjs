// A registry that cannot be reached is told from one that lacks what is asked for or has it no more, and from one
// that gives something else.
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { cpSync, mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { createServer } from 'node:http';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { test } from 'node:test';
import { fileURLToPath } from 'node:url';

const root = fileURLToPath(new URL('../..', import.meta.url));
const [, package_, version] = /^compiler (\S+) (\S+)/m.exec(readFileSync(join(root, 'release/packages.txt'), 'utf8'));
const nobody = 'http://127.0.0.1:9';

/** A copy of what releases are made by, with a cache of its own. */
function tree(t) {
  const folder = mkdtempSync(join(tmpdir(), 'corvane-downloads-'));
  t.after(() => rmSync(folder, { recursive: true, force: true }));
  mkdirSync(join(folder, 'scripts'));
  cpSync(join(root, 'scripts/release'), join(folder, 'scripts/release'));
  cpSync(join(root, 'release'), join(folder, 'release'), { recursive: true });
  mkdirSync(join(folder, 'cache/downloads'), { recursive: true });
  return folder;
}

/** How scripts/release ends there, and what it says. */
function release(folder, environment) {
  const own = {
    CORVANE_RELEASE_CACHE: join(folder, 'cache'), npm_config_cache: join(folder, 'npm'),
    npm_config_fetch_retries: '0', npm_config_proxy: '', npm_config_noproxy: '*',
  };
  const child = spawn(join(folder, 'scripts/release'), ['linux-x86_64'],
    { env: { ...process.env, ...own, ...environment }, stdio: ['ignore', 'ignore', 'pipe'] });
  let said = '';
  child.stderr.on('data', (chunk) => { said += chunk; });
  return new Promise((resolve) => child.on('close', (status) => resolve({ status, said })));
}

// Fails when the status is that of a broken build.
test('a registry of npm that cannot be reached', async (t) => {
  const { status, said } = await release(tree(t), { npm_config_registry: nobody });
  assert.match(said, /^release: the compiler cannot be fetched now, as its registry cannot be reached$/m);
  assert.equal(status, 69);
});

// Fails when everything that npm says against a download passes for a registry out of reach.
test('a registry of npm that lacks the compiler', async (t) => {
  const server = createServer((_, response) => response.writeHead(404).end('{}')).listen(0, '127.0.0.1');
  t.after(() => server.close());
  await new Promise((resolve) => server.once('listening', resolve));
  const { status, said } = await release(tree(t), { npm_config_registry: `http://127.0.0.1:${server.address().port}` });
  assert.match(said, /^release: the compiler is not to be had$/m);
  assert.equal(status, 1);
});

// Fails when the hash is not looked at.
test('a download that is not the one that is listed', async (t) => {
  const folder = tree(t);
  const download = join(folder, 'cache/downloads', `${package_.split('/').at(-1)}-${version}`);
  mkdirSync(download);
  writeFileSync(join(download, 'compiler.tgz'), 'other bytes');
  const { status, said } = await release(folder, { npm_config_registry: nobody });
  assert.match(said, /is not what release\/packages\.txt lists: its hash is [0-9a-f]{64}, not [0-9a-f]{64}$/m);
  assert.equal(status, 1);
});

test("Debian's packages that cannot be reached", async (t) => {
  const folder = tree(t);
  mkdirSync(join(folder, `cache/compiler-${version}`));
  const settings = join(folder, 'apt.conf');
  writeFileSync(settings, `Acquire::http::Proxy "${nobody}"; Acquire::https::Proxy "${nobody}"; Acquire::Retries "0";\n`);
  const { status, said } = await release(folder, { APT_CONFIG: settings });
  assert.match(said, /^release: Debian's lists of packages cannot be fetched now, as its registry cannot be reached$/m);
  assert.equal(status, 69);
});

// Fails when a version that Debian has replaced passes for a broken build.
for (const [kind, words] of [
  ['source', "E: Can not find version '3.0.1-1' of package 'simdjson'\nE: Unable to find a source package for simdjson"],
  ['headers', "E: Version '3.0.1-1' for 'simdjson' was not found"],
]) {
  test(`a package of Debian that has been replaced, ${kind}`, async (t) => {
    const folder = tree(t);
    mkdirSync(join(folder, `cache/compiler-${version}`));
    writeFileSync(join(folder, 'release/packages.txt'), `compiler ${package_} ${version} -\n${kind} simdjson 3.0.1-1 -\n`);
    const bin = join(folder, 'bin');
    mkdirSync(bin);
    const says = `#!/bin/sh\ncase "$*" in *update*) exit 0 ;; esac\ncat >&2 <<'END'\n${words}\nEND\nexit 100\n`;
    writeFileSync(join(bin, 'apt-get'), says, { mode: 0o755 });
    const { status, said } = await release(folder, { PATH: `${bin}:${process.env.PATH}` });
    assert.match(said, /^release: simdjson 3\.0\.1-1 has given way to a newer version, which release\/packages\.txt has to list$/m);
    assert.equal(status, 69);
  });
}
