// Long load: many conversations at once on one home, with the stand-in running. Every request has to
// be answered once, every dispatched request has to end, and nothing may grow.
//   node load.mjs SECONDS [CONVERSATIONS]       programs: $CORVANE_BIN
import { execFileSync } from 'node:child_process';
import { mkdirSync, mkdtempSync, readFileSync, symlinkSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join, resolve } from 'node:path';

import { environmentOf, remove, supportIn } from '../support/home.mjs';
import { Conversation } from './Conversation.mjs';

/** Three that read and answer, four of the pool, and that of the log. */
const mostThreads = 8;

const seconds = Number(process.argv[2] ?? 600);
const count = Number(process.argv[3] ?? 50);
const bin = resolve(process.env.CORVANE_BIN ?? 'build/release/bin');
const appBundle = join(resolve(process.env.CORVANE_APP_BIN ?? bin), 'Corvane.app');
const project = 'Corner Shop';

/** Numbers from 0 to 1, the same in every run. */
function seeded(seed) {
  let state = seed;
  return () => {
    state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
    return state / 2 ** 32;
  };
}

const home = mkdtempSync(join(tmpdir(), 'corvane-load-'));
const environment = environmentOf(home);
const support = supportIn(home);
mkdirSync(join(support, 'StandIn'), { recursive: true });
writeFileSync(
  join(support, 'StandIn', 'settings.json'),
  JSON.stringify({
    stepSeconds: 0,
    buildSeconds: 0,
    coldStartSeconds: 0,
    creditBalance: 1e9,
    captures: false,
  }),
);
mkdirSync(join(home, 'Applications'));
symlinkSync(appBundle, join(home, 'Applications', 'Corvane.app'));

const statuses = new Map();
const tally = (status) => statuses.set(status, (statuses.get(status) ?? 0) + 1);
const faults = [];

const step = (type, description, parameters) => ({ type, description, parameters });
const payload = (name) => ({
  projectName: project,
  testName: name,
  iosProjectPath: '/src/shop',
  bundleIdentifier: 'com.example.cornershop',
  autoRun: false,
  interactions: [
    step('builtIn', '', { command: 'terminateApplication' }),
    step('builtIn', '{{APP_NAME}}', { command: 'openApplication' }),
    step('visualAssert', "Is the 'Cart' shown?"),
    step('builtIn', '', { command: 'terminateApplication' }),
  ],
});

/** One agent: dispatches, follows and asks around until `isOver`. */
class Agent {
  constructor(number) {
    this.name = `Agent ${number}`;
    this.random = seeded(number);
    this.conversation = new Conversation(join(bin, 'corvane-mcp'), environment);
    this.dispatched = 0;
  }

  dispatches = [
    ['run_test', () => ({ projectName: project, testNames: ['Browse the catalogue'] })],
    ['create_test', () => payload(`${this.name} checks`)],
    ['explore_flow', () => ({ projectName: project, goal: `${this.name}: tap "Cart", assert it is shown` })],
    ['extract_udi', () => ({
      projectName: project,
      testName: 'Browse the catalogue',
      fromStep: 0,
      toStep: 1,
      udiName: this.name,
      overwrite: true,
    })],
    ['delete_udi', () => ({ udiName: this.name })],
  ];

  questions = [
    () => this.conversation.request('ping'),
    () => this.conversation.request('tools/list'),
    () => this.conversation.call('describe_project', {}),
    () => this.conversation.call('get_status', {}),
    () => this.conversation.call('health', {}),
    () => this.conversation.call('list_interaction_types', {}),
    () => this.conversation.call('nothing', {}),
    () => this.conversation.call('run_test', { projectName: '' }),
    () => this.conversation.call('get_result', { requestId: 'none' }),
    () => this.conversation.disturb('{"jsonrpc":'),
  ];

  pick(list) {
    return list[Math.floor(this.random() * list.length)];
  }

  async dispatch() {
    const [tool, args] = this.pick(this.dispatches);
    const text = await this.conversation.call(tool, args());
    const requestId = /requestId: +([0-9a-f-]{36})/.exec(text)?.[1];
    if (!requestId) {
      faults.push(`${this.name}: ${tool} answered ${text}`);
      return;
    }
    this.dispatched += 1;
    if (this.random() < 0.1) await this.conversation.call('cancel_run', { requestId });
    tally(await this.end(requestId));
  }

  /** The terminal status of a request; asks other things meanwhile. */
  async end(requestId) {
    const timeout = Date.now() + 120_000;
    while (Date.now() < timeout) {
      const [text] = await Promise.all([
        this.conversation.call('get_result', { requestId, waitSeconds: 1 + Math.floor(this.random() * 4) }),
        this.pick(this.questions)(),
      ]);
      const terminal = /^status: (\w+) \(terminal\)/.exec(text);
      if (terminal) return terminal[1];
    }
    faults.push(`${this.name}: ${requestId} does not end`);
    return 'unended';
  }

  begin() {
    return this.conversation.request('initialize', {
      protocolVersion: '2025-06-18',
      capabilities: {},
      clientInfo: { name: this.name, version: '1' },
    });
  }

  /** Asks everything there is to ask, on every thread of the server. */
  async askAll() {
    for (let round = 0; round < 12; round += 1) {
      await Promise.all(this.questions.flatMap((ask) => [ask(), ask()]));
    }
  }

  async liveUntil(time) {
    while (Date.now() < time) {
      await (this.random() < 0.5 ? this.dispatch() : this.pick(this.questions)());
    }
  }
}

const largest = (list, key) => Math.max(...list.map((each) => each[key]));

async function main() {
  const begin = Date.now();
  const agents = Array.from({ length: count }, (_, number) => new Agent(number + 1));
  await Promise.all(agents.map((agent) => agent.begin()));
  const holdings = () => agents.map(({ conversation }) => conversation.holdings());
  // What a server holds is compared between two quiet moments; pools are full after the first.
  await Promise.all(agents.map((agent) => agent.liveUntil(begin + seconds * 250)));
  const before = holdings();
  await Promise.all(agents.map((agent) => agent.liveUntil(begin + seconds * 1000)));
  const after = holdings();
  // The workspace has grown with every exploration, so that answers need more memory than at first. A
  // server that was started just now and is asked the same tells how much.
  const newcomer = new Agent(count + 1);
  await newcomer.begin();
  await newcomer.askAll();
  const needed = newcomer.conversation.holdings().kilobytes;
  agents.push(newcomer);

  const exits = await Promise.all(agents.map(({ conversation }) => conversation.close()));
  for (const [at, agent] of agents.entries()) {
    faults.push(...agent.conversation.faults.map((fault) => `${agent.name}: ${fault}`));
    if (exits[at] !== 0) faults.push(`${agent.name}: exit status ${exits[at]}`);
    if (agent === newcomer) continue;
    if (after[at].descriptors > before[at].descriptors) {
      faults.push(`${agent.name}: ${before[at].descriptors} descriptors became ${after[at].descriptors}`);
    }
    // Threads start as they are needed.
    if (after[at].threads > mostThreads) faults.push(`${agent.name}: ${after[at].threads} threads`);
    const growth = after[at].kilobytes - Math.max(before[at].kilobytes, needed);
    if (growth > 4096) faults.push(`${agent.name}: holds ${growth} KiB more than it needs`);
  }
  const calls = agents.reduce((sum, { conversation }) => sum + conversation.calls, 0);
  const dispatched = agents.reduce((sum, agent) => sum + agent.dispatched, 0);
  const ends = [...statuses].map(([status, number]) => `${number} ${status}`).join(', ');
  console.log(`${count} conversations, ${seconds} s: ${calls} requests answered once each`);
  console.log(`${dispatched} requests dispatched: ${ends}`);
  for (const [when, held] of [['a quarter of the time', before], ['all of it', after]]) {
    console.log(
      `after ${when} a server holds at most ${largest(held, 'descriptors')} descriptors, ` +
        `${largest(held, 'threads')} threads, ${largest(held, 'kilobytes')} KiB`,
    );
  }
  console.log(`a new server that is asked everything then holds ${needed} KiB`);
}

try {
  await main();
} catch (error) {
  const log = readFileSync(join(home, 'Library', 'Logs', 'Corvane', 'mcp.log'), 'utf8');
  faults.push(`${error.stack}\n${log.split('\n').slice(-20).join('\n')}`);
} finally {
  const standIn = join(appBundle, 'Contents', 'MacOS', 'Corvane');
  await remove(home, () => execFileSync(standIn, ['--quit'], { env: environment }));
}
for (const fault of faults.slice(0, 20)) console.error(`load: ${fault}`);
process.exit(faults.length === 0 ? 0 : 1);
