// A root of its own: the files of a few installed Debian packages with all that they depend on, and nothing
// else, so that a package shows what it needs. Needs root, or user namespaces.
import { execFileSync, spawnSync } from 'node:child_process';
import {
  copyFileSync, existsSync, mkdirSync, mkdtempSync, readdirSync, rmSync, symlinkSync, writeFileSync,
} from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { getuid } from 'node:process';

export const run = (command, args, options) =>
  execFileSync(command, args, { encoding: 'utf8', maxBuffer: 1 << 28, stdio: 'pipe', ...options });
const lines = (text) => text.split('\n').filter((line) => line !== '');

/** What a command needs in front of it to have the rights of root, over files of its own. */
const asRoot = getuid() === 0 ? [] : ['unshare', '--user', '--map-root-user'];
if (spawnSync('unshare', [...asRoot.slice(1), '--mount', '--pid', '--fork', 'true']).status !== 0) {
  throw new Error('a clean root takes root, or user namespaces, which this system does not grant');
}

/** The names of installed Debian packages, with everything that they depend on. */
function closure(names) {
  const installed = new Map();
  const format = '${db:Status-Status}\t${Package}\t${Provides}\t${Pre-Depends}, ${Depends}\n';
  for (const line of lines(run('dpkg-query', ['-W', '-f', format]))) {
    const [status, name, provided, needed] = line.split('\t');
    if (status !== 'installed') continue;
    const namesIn = (text) => text.split(/[,|]/).map((one) => one.trim().split(/[ :]/)[0]).filter(Boolean);
    const dependencies = needed.split(',').map(namesIn).filter((alternatives) => alternatives.length > 0);
    installed.set(name, { name, dependencies });
    for (const other of namesIn(provided)) {
      if (!installed.has(other)) installed.set(other, installed.get(name));
    }
  }
  const found = new Set();
  const left = [...names];
  while (left.length > 0) {
    const { name, dependencies } = installed.get(left.pop()) ?? {};
    if (name === undefined || found.has(name)) continue;
    found.add(name);
    left.push(...dependencies.map((alternatives) => alternatives.find((one) => installed.has(one))));
  }
  return [...found];
}

/** The names in the Depends of a package file. */
export const dependenciesOf = (deb) =>
  run('dpkg-deb', ['-f', deb, 'Depends']).split(',').map((one) => one.trim().split(' ')[0]);

export class CleanRoot {
  /** With the packages named and all that they need; gone after test `t`. */
  constructor(t, ...names) {
    this.path = mkdtempSync(join(tmpdir(), 'corvane-root-'));
    t.after(() => rmSync(this.path, { recursive: true, force: true }));
    for (const folder of ['bin', 'sbin', 'lib', 'lib64']) {
      mkdirSync(join(this.path, 'usr', folder), { recursive: true });
      symlinkSync(`usr/${folder}`, join(this.path, folder));
    }
    const packages = closure(names);
    const files = lines(run('dpkg', ['-L', ...packages])).filter((file) => file !== '/.' && existsSync(file));
    const copy = 'tar --create --no-recursion --files-from=- | tar --extract --keep-directory-symlink -C "$0"';
    run('sh', ['-c', copy, this.path], { input: [...new Set(files)].join('\n') });
    this.#writeDatabase(packages);
    for (const folder of ['dev', 'proc', 'tmp', 'home/user']) {
      mkdirSync(join(this.path, folder), { recursive: true });
    }
  }

  #writeDatabase(packages) {
    const database = join(this.path, 'var/lib/dpkg');
    for (const folder of ['info', 'updates']) mkdirSync(join(database, folder), { recursive: true });
    writeFileSync(join(database, 'status'), run('dpkg-query', ['-s', ...packages]).replace(/^---\n/gm, ''));
    for (const file of readdirSync('/var/lib/dpkg/info')) {
      const [name] = file.split(/[:.]list|:/);
      if (file.endsWith('.list') && packages.includes(name)) {
        copyFileSync(join('/var/lib/dpkg/info', file), join(database, 'info', file));
      }
    }
  }

  /** Runs dpkg on this root. */
  dpkg(...args) {
    const [command, ...rest] = [...asRoot, 'dpkg', `--root=${this.path}`, '--no-triggers', ...args];
    return run(command, rest);
  }

  /**
   * Runs a program inside, with processes of its own that end with it, as a user with a new home: its exit status
   * and what it printed.
   */
  run(program, ...args) {
    const enter = 'mount --rbind /dev "$0/dev" && mount -t proc proc "$0/proc" && exec chroot "$0" "$@"';
    const apart = ['unshare', '--mount', '--pid', '--fork', '--kill-child', 'sh', '-c', enter, this.path];
    const [command, ...rest] = [...asRoot, ...apart, program, ...args];
    const { status, stdout, stderr } = spawnSync(command, rest, {
      encoding: 'utf8', timeout: 180_000, env: { PATH: process.env.PATH, HOME: '/home/user' },
    });
    return { status, stdout, stderr };
  }

  /** All there is below a folder of it, without the notes that dpkg takes. */
  list(folder = '.') {
    const files = lines(run('find', [folder], { cwd: this.path }));
    return files.filter((file) => !file.includes('/var/lib/dpkg/')).sort();
  }
}
