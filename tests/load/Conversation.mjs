// One agent's conversation with a server of its own: raw lines, so that a reply too many shows.
import { execFileSync, spawn } from 'node:child_process';
import { once } from 'node:events';
import { readFileSync, readdirSync } from 'node:fs';
import { platform } from 'node:process';
import { createInterface } from 'node:readline';

export class Conversation {
  #server;
  #waiting = new Map();
  #disturbances = [];
  #nextId = 1;
  /** What was seen that must never be seen. */
  faults = [];
  calls = 0;

  constructor(program, environment) {
    this.#server = spawn(program, [], { env: environment, stdio: ['pipe', 'pipe', 'ignore'] });
    createInterface({ input: this.#server.stdout }).on('line', (line) => this.#take(line));
    this.#server.on('exit', () => {
      for (const id of this.#waiting.keys()) this.faults.push(`request ${id} was never answered`);
      for (const settle of this.#waiting.values()) settle({ error: { code: 0, message: 'gone' } });
      for (const settle of this.#disturbances) settle();
    });
  }

  #take(line) {
    const message = JSON.parse(line);
    if (message.method) return;
    const isAboutNoRequest = message.id === null && message.error?.code === -32700;
    const settle = isAboutNoRequest
      ? this.#disturbances.shift()
      : this.#waiting.get(message.id);
    if (!settle) {
      this.faults.push(`a reply that nobody waits for: ${line.slice(0, 200)}`);
      return;
    }
    this.#waiting.delete(message.id);
    settle(message);
  }

  /** The reply to a request. */
  request(method, params) {
    const id = this.#nextId++;
    this.calls += 1;
    this.#server.stdin.write(`${JSON.stringify({ jsonrpc: '2.0', id, method, params })}\n`);
    return new Promise((settle) => this.#waiting.set(id, settle));
  }

  /** Calls a tool; the text of its first block, or of the error. */
  async call(tool, args) {
    const reply = await this.request('tools/call', { name: tool, arguments: args });
    return reply.error ? `error ${reply.error.code}: ${reply.error.message}` : reply.result.content[0].text;
  }

  /** Sends a line that is no message; settles when the server has said so. */
  disturb(line) {
    this.calls += 1;
    this.#server.stdin.write(`${line}\n`);
    return new Promise((settle) => this.#disturbances.push(settle));
  }

  /** What the server holds while nothing is asked of it. */
  holdings() {
    const id = String(this.#server.pid);
    if (platform === 'darwin') {
      const lines = (command, ...args) => execFileSync(command, args, { encoding: 'utf8' }).trim().split('\n');
      return {
        descriptors: lines('lsof', '-p', id, '-a', '-d', '0-9999', '-Ff').filter((line) => line[0] === 'f').length,
        threads: lines('ps', '-M', '-p', id).length - 1,
        kilobytes: Number(lines('ps', '-o', 'rss=', '-p', id)[0]),
      };
    }
    const status = readFileSync(`/proc/${id}/status`, 'utf8');
    const number = (name) => Number(new RegExp(`^${name}:\\s+(\\d+)`, 'm').exec(status)[1]);
    return {
      descriptors: readdirSync(`/proc/${id}/fd`).length,
      threads: number('Threads'),
      kilobytes: number('VmRSS'),
    };
  }

  /** Ends the input; the exit status. */
  async close() {
    this.#server.stdin.end();
    const [status] = await once(this.#server, 'exit');
    return status;
  }
}
