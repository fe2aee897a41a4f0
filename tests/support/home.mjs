// Where programs find their files whose home is a test's own; on macOS HOME alone does not move them.
import { existsSync, rmSync } from 'node:fs';
import { join } from 'node:path';
import { platform } from 'node:process';
import { setTimeout } from 'node:timers/promises';

const mac = platform === 'darwin';

/** The environment of a program with a home of its own, that sees no processes of other homes. */
export const environmentOf = (home) => ({
  PATH: process.env.PATH,
  HOME: home,
  CFFIXED_USER_HOME: home,
  [mac ? 'DYLD_INSERT_LIBRARIES' : 'LD_PRELOAD']: process.env.CORVANE_OWN_PROCESSES ?? '',
});

/** The folder that server and app share. */
export const supportIn = (home) =>
  mac ? join(home, 'Library', 'Application Support', 'Corvane') : join(home, '.local', 'share', 'Corvane');

/**
 * Removes a folder that a program may still write to: has `endPrograms` end them, and does so again
 * when something was added meanwhile. (The retries of rmSync do not look for what was added.)
 */
export async function remove(folder, endPrograms = () => {}) {
  for (let tries = 1; existsSync(folder); tries += 1) {
    endPrograms();
    try {
      rmSync(folder, { recursive: true, force: true });
    } catch (error) {
      if (tries === 1000) throw error;
      await setTimeout(20);
    }
  }
}
