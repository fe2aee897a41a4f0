// Where programs find their files whose home is a test's own; on macOS HOME alone does not move them.
import { join } from 'node:path';
import { platform } from 'node:process';

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
