// The Markdown report says to a reader of the dialect that build services show what it was given.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { test } from 'node:test';

import { evil, Home, makeResult, makeStep, makeTest, shown } from './support.mjs';

/** The report as HTML in which no markup of the report's own HTML would survive. */
const rendered = (file) =>
  execFileSync('cmark-gfm', ['-e', 'table', '-e', 'autolink', '-e', 'strikethrough', '--unsafe', file], {
    encoding: 'utf8',
  });
const plain = (html) =>
  html
    .replace(/<[^>]*>/g, '')
    .replace(/&lt;/g, '<')
    .replace(/&gt;/g, '>')
    .replace(/&quot;/g, '"')
    .replace(/&amp;/g, '&');

test('shows every text as it is', async (t) => {
  const texts = [...evil, 'https://example.com www.example.com', '1. one', '- two', '~~three~~'];
  const tests = texts.map((text) =>
    makeTest(text, [makeStep(3, { description: text, status: 'failed', failureReason: text })], {
      status: 'failed',
    }),
  );
  const { file } = await new Home(t).report('markdown', makeResult({ status: 'failed', tests }));
  const html = rendered(file);
  // All the elements that there are, so none that a text has brought in.
  const elements = new Set([...html.matchAll(/<([a-z0-9]+)/g)].map((match) => match[1]));
  assert.deepEqual(
    [...elements].sort(),
    ['blockquote', 'br', 'h2', 'h3', 'li', 'p', 'table', 'tbody', 'td', 'th', 'thead', 'tr', 'ul'],
  );
  const headings = [...html.matchAll(/<h3>(.*?)<\/h3>/g)].map((match) => plain(match[1]));
  assert.deepEqual(headings, texts.map((text) => `❌ ${shown(text)}`));
  const cells = [...html.matchAll(/<td>(.*?)<\/td>/g)].map((match) => plain(match[1]));
  for (const text of texts) {
    assert.ok(cells.includes(shown(text)), text);
    assert.ok(plain(html).includes(`step 3 failed: TAP: ${shown(text)}`), text);
  }
});

test('fits into a build summary', async (t) => {
  const steps = Array.from({ length: 10_000 }, (_, i) =>
    makeStep(i, { status: 'failed', failureReason: 'The button was not there. '.repeat(20) }),
  );
  const { text } = await new Home(t).report(
    'markdown',
    makeResult({ status: 'failed', tests: [makeTest('Long', steps, { status: 'failed' })] }),
  );
  assert.ok(Buffer.byteLength(text) < 1024 * 1024);
  assert.match(text, /\nLeft out for want of room: \d+\n$/);
});
