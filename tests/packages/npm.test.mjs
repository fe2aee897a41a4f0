import assert from 'node:assert/strict';
import { execFile, spawn } from 'node:child_process';
import { once } from 'node:events';
import { mkdirSync, mkdtempSync, readFileSync, readdirSync, readlinkSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { platform } from 'node:process';
import { test } from 'node:test';
import { promisify } from 'node:util';

import { registryOf } from './registry.mjs';
import { expectNotices, file, files, npmName, rootWithStandIn, use, version } from './support.mjs';

const here = `corvane-mcp-${platform}-${npmName}`;
const health = '{"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":"health","arguments":{}}}\n';

/** npm and npx in a home and a folder of their own, with no packages to draw from but those under test. */
async function npmFor(t, home) {
  const registry = await registryOf(t, files(/\.tgz$/).map(file));
  const project = join(home, 'project');
  mkdirSync(project);
  const env = {
    PATH: process.env.PATH, HOME: home, npm_config_registry: registry, npm_config_cache: join(home, 'cache'),
    npm_config_audit: 'false', npm_config_fund: 'false', npm_config_update_notifier: 'false',
  };
  const call = async (command, args, input = '') => {
    const running = promisify(execFile)(command, args, { cwd: project, env });
    running.child.stdin.end(input);
    return (await running).stdout;
  };
  const installed = () => readdirSync(join(project, 'node_modules')).filter((name) => !name.startsWith('.'));
  return { call, installed, modules: join(project, 'node_modules'), env };
}

function folderFor(t) {
  const folder = mkdtempSync(join(tmpdir(), 'corvane-npm-'));
  t.after(() => rmSync(folder, { recursive: true, force: true }));
  return folder;
}

test('one line of npx starts the server', async (t) => {
  const npm = await npmFor(t, folderFor(t));
  const reply = JSON.parse(await npm.call('npx', ['-y', 'corvane-mcp'], health));
  assert.match(reply.result.content[0].text, /^corvane-mcp is healthy/);
  const told = await npm.call('npx', ['-y', '-p', 'corvane-mcp', 'corvanectl', '--version']);
  assert.equal(told, `corvanectl ${version}\n`);
});

// Fails when the launcher needs more than a shell and coreutils.
test('installed it works without Node.js, and goes again', async (t) => {
  const root = rootWithStandIn(t, 'dash', 'coreutils');
  const npm = await npmFor(t, join(root.path, 'home/user'));
  await npm.call('npm', ['install', 'corvane-mcp']);
  assert.deepEqual(npm.installed(), ['corvane-mcp', here]);
  expectNotices(readFileSync(join(npm.modules, here, 'NOTICES.txt'), 'utf8'));
  const programs = '/home/user/project/node_modules/.bin';
  use(root, `${programs}/corvane-mcp`, `${programs}/corvanectl`);
  await npm.call('npm', ['uninstall', 'corvane-mcp']);
  assert.deepEqual(npm.installed(), []);
  assert.deepEqual(readdirSync(join(npm.modules, '.bin')), []);
});

// Fails when the launcher stays between the client and the server.
test('what runs is the server itself', async (t) => {
  const npm = await npmFor(t, folderFor(t));
  await npm.call('npm', ['install', 'corvane-mcp']);
  const server = spawn(join(npm.modules, '.bin/corvane-mcp'), { env: npm.env, stdio: ['pipe', 'pipe', 'ignore'] });
  t.after(() => server.kill());
  server.stdin.write(health);
  await once(server.stdout, 'data');
  assert.equal(readlinkSync(`/proc/${server.pid}/exe`), join(npm.modules, here, 'bin/corvane-mcp'));
});

// npm then puts the programs below the launcher's package, not beside it.
test('installed for all of a machine it works as well', async (t) => {
  const home = folderFor(t);
  const npm = await npmFor(t, home);
  await npm.call('npm', ['install', '--global', '--prefix', join(home, 'global'), 'corvane-mcp']);
  assert.equal(await npm.call(join(home, 'global/bin/corvanectl'), ['--version']), `corvanectl ${version}\n`);
});

// Fails when a package does not name the system and the processor that it is for.
test('each system gets the programs that are made for it, and no others', async (t) => {
  for (const name of files(/^corvane-mcp-(darwin|linux)-\w+-.*\.tgz$/)) {
    const [, os, cpu] = /^corvane-mcp-(darwin|linux)-(\w+)-/.exec(name);
    const npm = await npmFor(t, folderFor(t));
    await npm.call('npm', ['install', `--os=${os}`, `--cpu=${cpu}`, 'corvane-mcp']);
    assert.deepEqual(npm.installed(), ['corvane-mcp', `corvane-mcp-${os}-${cpu}`]);
  }
});

test('without its programs it says what is missing', async (t) => {
  const npm = await npmFor(t, folderFor(t));
  await npm.call('npm', ['install', '--omit=optional', 'corvane-mcp']);
  await assert.rejects(npm.call(join(npm.modules, '.bin/corvane-mcp'), []), (error) => {
    assert.equal(error.code, 1);
    assert.equal(
      error.stderr,
      `corvane-mcp: the programs for ${platform}-${npmName} are not installed. They come with corvane-mcp on ` +
        'macOS and on Linux with glibc, for processors of 64 bits, unless optional dependencies are left out.\n',
    );
    return true;
  });
});
