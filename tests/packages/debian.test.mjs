import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { test } from 'node:test';
import { gunzipSync } from 'node:zlib';

import { CleanRoot, dependenciesOf, run } from './cleanroot.mjs';
import { debianName, expectNotices, file, files, rootWithStandIn, use, version } from './support.mjs';

const server = file(`corvane-mcp_${version}_${debianName}.deb`);
const standIn = file(`corvane-mcp-standin_${version}_${debianName}.deb`);

// Fails when dpkg-shlibdeps is not asked what the stand-in needs, or a file is not in a package's list.
test('the packages install beside nothing but what they name, work, and leave nothing', (t) => {
  const root = rootWithStandIn(t, 'dash', ...dependenciesOf(server));
  root.dpkg('--remove', 'corvane-mcp-standin');
  const before = new Set(root.list());
  root.dpkg('--install', server, standIn);
  use(root, '/usr/bin/corvane-mcp', '/usr/bin/corvanectl');
  const trial = root.run('/usr/bin/corvanectl', 'try');
  assert.equal(trial.status, 0, trial.stdout + trial.stderr);
  root.dpkg('--remove', 'corvane-mcp', 'corvane-mcp-standin');
  // What the programs have written is the user's, and fontconfig notes the fonts.
  const notOurs = /^\.\/(home|tmp|var\/cache\/fontconfig)/;
  assert.deepEqual(root.list().filter((name) => !before.has(name) && !notOurs.test(name)), []);
});

// Fails when the package has the programs of a build for this machine.
test('the server needs nothing but the C library, and the stand-in is refused where it cannot work', (t) => {
  assert.deepEqual(dependenciesOf(server), ['libc6']);
  const root = new CleanRoot(t, 'libc6');
  root.dpkg('--install', server);
  assert.equal(root.run('/usr/bin/corvanectl', 'health').status, 0);
  assert.throws(() => root.dpkg('--install', standIn), /depends on libcairo2/);
});

// Fails when the licences are left out, or pages are not compressed.
test('the packages have what Debian expects of one', (t) => {
  const root = rootWithStandIn(t, ...dependenciesOf(server));
  root.dpkg('--install', server);
  const has = (name) => readFileSync(join(root.path, 'usr/share', name));
  for (const name of ['corvane-mcp', 'corvane-mcp-standin']) {
    expectNotices(has(`doc/${name}/copyright`).toString());
    const changes = gunzipSync(has(`doc/${name}/changelog.gz`)).toString();
    assert.ok(changes.startsWith(`${name} (${version}) stable; urgency=medium\n\n  `), changes);
    assert.match(changes, /^ {2}\* \w/m);
    assert.match(changes, /\n\n -- .+ <.+@.+> {2}\w{3}, \d\d \w{3} \d{4} 00:00:00 \+0000\n$/);
  }
  for (const page of ['corvane-mcp', 'corvanectl', 'corvane_standin']) {
    assert.match(gunzipSync(has(`man/man1/${page}.1.gz`)).toString(), /^\.TH /m);
  }
  for (const completion of [
    'bash-completion/completions/corvanectl',
    'zsh/site-functions/_corvanectl',
    'fish/vendor_completions.d/corvanectl.fish',
  ]) {
    assert.ok(has(completion).length > 0);
  }
  const contents = run('dpkg-deb', ['-c', server]);
  assert.doesNotMatch(contents, /^.{10} (?!root\/root )/m);
  assert.match(contents, /^-rwxr-xr-x .* \.\/usr\/bin\/corvane-mcp$/m);
});

test('a package for another processor says so, and is refused', (t) => {
  for (const name of files(/^corvane-mcp_.*\.deb$/)) {
    const architecture = run('dpkg-deb', ['-f', file(name), 'Architecture']).trim();
    assert.equal(name, `corvane-mcp_${version}_${architecture}.deb`);
    if (architecture === debianName) continue;
    const root = new CleanRoot(t, 'libc6');
    assert.throws(() => root.dpkg('--install', file(name)), /does not match system/);
  }
});
