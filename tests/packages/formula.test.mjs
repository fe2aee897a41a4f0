import assert from 'node:assert/strict';
import { readFileSync, rmSync } from 'node:fs';
import { join, resolve } from 'node:path';
import { test } from 'node:test';

import { run } from './cleanroot.mjs';
import { file, version } from './support.mjs';

// Fails when the archive lacks a file that the build or the installation reads, or the formula a library.
test('the formula builds the sources that it names, as Homebrew would', () => {
  const formula = file('corvane-mcp.rb');
  assert.match(run('ruby', ['-c', formula]), /Syntax OK/);
  const installed = /formulas=\((.*)\)/.exec(readFileSync('../../scripts/setup', 'utf8'))[1].split(' ');
  // Neither makes a difference to what is built; and zlib is part of macOS.
  const needed = [...installed.filter((name) => !['ccache', 'chafa'].includes(name)), 'zlib'];

  // Always the same folder, so that the compiler's cache knows it.
  const folder = resolve('../../build/package-work/formula');
  rmSync(folder, { recursive: true, force: true });
  run('ruby', ['formula.rb', formula, folder, ...needed], {
    env: { ...process.env, CCACHE_SLOPPINESS: 'pch_defines,time_macros,include_file_mtime,include_file_ctime' },
  });
  const prefix = join(folder, 'prefix');
  assert.equal(run(join(prefix, 'bin/corvane-mcp'), ['--version']), `corvane-mcp ${version}\n`);
  const standIn = join(prefix, 'libexec/corvane-mcp/Corvane.app/Contents/MacOS/Corvane');
  assert.match(run(standIn, ['--help']), /stand-in/i);
  rmSync(folder, { recursive: true });
});
