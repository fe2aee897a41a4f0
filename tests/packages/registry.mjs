// A registry of npm's, with nothing in it but some packages as npm has packed them.
import { createHash } from 'node:crypto';
import { readFileSync } from 'node:fs';
import { createServer } from 'node:http';
import { basename } from 'node:path';

import { run } from './cleanroot.mjs';

/** Serves the files until test `t` ends; its address. */
export async function registryOf(t, files) {
  const packages = new Map(files.map((file) => {
    const description = JSON.parse(run('tar', ['-xzOf', file, 'package/package.json']));
    return [description.name, { file, description, bytes: readFileSync(file) }];
  }));
  const server = createServer((request, response) => {
    const [, name, , file] = decodeURIComponent(request.url).split('/');
    const found = packages.get(name);
    if (found === undefined) {
      response.writeHead(404).end();
    } else if (file !== undefined) {
      response.end(found.bytes);
    } else {
      const { version } = found.description;
      const dist = {
        tarball: `http://${request.headers.host}/${name}/-/${basename(found.file)}`,
        integrity: `sha512-${createHash('sha512').update(found.bytes).digest('base64')}`,
      };
      response.end(JSON.stringify({
        name, 'dist-tags': { latest: version }, versions: { [version]: { ...found.description, dist } },
      }));
    }
  });
  await new Promise((listening) => server.listen(0, '127.0.0.1', listening));
  t.after(() => server.close());
  return `http://127.0.0.1:${server.address().port}/`;
}
