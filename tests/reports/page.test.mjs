// The HTML report in a real browser: what it shows, the filter, the keys, colours, paper, and no scripts.
import assert from 'node:assert/strict';
import { statSync } from 'node:fs';
import { test } from 'node:test';

import { Browser } from './browser.mjs';
import { evil, Home, makeResult, makeStep, makeTest, shown } from './support.mjs';

/** Three tests: one passes, one is healed and one fails, each with captures. */
function threeTests(home) {
  const trace = (name) => ({ artifactsDir: home.capture(name, 3), lastStepIndex: 2 });
  return makeResult({
    status: 'failed',
    message: 'One test failed.',
    appUnderTest: { bundleId: 'com.shop', version: '1.2', build: '45' },
    creditsSpent: 1.5,
    creditBalance: 20,
    summary: { tests: 3, testsPassed: 2, durationSeconds: 2.25 },
    tests: [
      makeTest('Browse', [makeStep(0), makeStep(1, { description: 'Tap Kitchen' }), makeStep(2)], {
        trace: trace('browse'),
      }),
      makeTest('Search', [makeStep(0), makeStep(1, { status: 'healed', healedByAI: true }), makeStep(2)], {
        trace: trace('search'),
      }),
      makeTest(
        'Pay',
        [
          makeStep(0),
          makeStep(1, { status: 'failed', failureReason: 'There is no such button.' }),
          makeStep(2, { status: 'skipped', durationSeconds: undefined }),
        ],
        { status: 'failed', trace: trace('pay') },
      ),
    ],
  });
}

async function openThreeTests(t, options) {
  const home = new Home(t);
  const { file } = await home.report('html', threeTests(home));
  const browser = await Browser.start(t);
  return { browser, file, page: await browser.open(file, options) };
}

const visible = (selector) =>
  [...document.querySelectorAll(selector)].filter((each) => each.checkVisibility());
/** The texts of those elements that are in sight. */
const visibleTexts = (page, selector) =>
  page.evaluate(`(${visible})(${JSON.stringify(selector)}).map((each) => each.textContent)`);

test('shows tests, steps and pictures', async (t) => {
  const { page } = await openThreeTests(t);
  assert.equal(await page.evaluate('document.title'), 'Shop: failed');
  assert.deepEqual(await visibleTexts(page, 'h2'), ['Browse', 'Search', 'Pay']);
  // The test that passed is closed.
  assert.equal((await visibleTexts(page, '.step')).length, 6);
  assert.deepEqual(await visibleTexts(page, '.reason'), ['There is no such button.']);
  const facts = await page.evaluate(() =>
    Object.fromEntries([...document.querySelectorAll('.facts div')].map((each) => [...each.children].map((part) => part.textContent))),
  );
  assert.equal(facts['App under test'], 'com.shop 1.2 build 45');
  assert.equal(facts.Credits, '1.5 spent, 20 left');
  const pictures = await page.evaluate(async () => {
    const images = [...document.querySelectorAll('.step.failed img')];
    await Promise.all(images.map((each) => each.decode()));
    return images.map((each) => {
      const { x, y, width } = each.getBoundingClientRect();
      return { natural: [each.naturalWidth, each.naturalHeight], shape: each.width / each.height, x, y, width, alt: each.alt };
    });
  });
  assert.deepEqual(pictures.map((each) => each.alt), [
    'The screen before step 1: TAP: Tap button 1',
    'The screen after step 1: TAP: Tap button 1',
  ]);
  const [before, after] = pictures;
  assert.deepEqual(before.natural, [370, 800]);
  assert.ok(Math.abs(before.shape - 370 / 800) < 0.01);
  assert.equal(before.y, after.y);
  assert.ok(after.x >= before.x + before.width);
  // A step that was not carried out has none.
  assert.equal(await page.evaluate("document.querySelectorAll('.step.skipped img').length"), 0);
  assert.equal(await page.evaluate("document.querySelectorAll('img').length"), 16);
});

test('asks for nothing and complains of nothing', async (t) => {
  const { page } = await openThreeTests(t);
  const asked = page.events('Network.requestWillBeSent').map((each) => each.params.request.url.split(':')[0]);
  assert.deepEqual(asked.filter((each) => each !== 'data'), ['file']);
  assert.deepEqual(page.events('Log.entryAdded'), []);
  assert.deepEqual(page.events('Runtime.exceptionThrown'), []);
});

test('shows markup as text and runs none of it', async (t) => {
  const tests = evil.map((text) =>
    makeTest(text, [makeStep(0, { title: text, description: text, status: text, failureReason: text })], { status: text }),
  );
  const { file } = await new Home(t).report(
    'html',
    makeResult({ status: 'blocked', projectName: evil[1], message: evil[0], platform: evil[0], tests,
      blocked: { code: evil[0], message: evil[1], url: `https://x/"><script>window.hacked = true</script>` } }),
  );
  const page = await (await Browser.start(t)).open(file);
  assert.equal(await page.evaluate('window.hacked'), undefined);
  assert.equal(await page.evaluate("document.querySelectorAll('script, style, title, img').length"), 3);
  const oneLine = evil.map(shown);
  for (const selector of ['h2', '.does', '.kind', '.step .word']) {
    const texts = await page.evaluate((each) => [...document.querySelectorAll(each)].map((e) => e.textContent), selector);
    assert.deepEqual(texts, oneLine, selector);
  }
  const reasons = await page.evaluate(() => [...document.querySelectorAll('.reason')].map((e) => e.textContent));
  assert.equal(reasons[4], 'two\nlines and a tab here');
});

test('is filtered by text and by outcome', async (t) => {
  const { page } = await openThreeTests(t);
  await page.click('input[type=search]');
  await page.type('kitchen');
  assert.deepEqual(await visibleTexts(page, 'h2'), ['Browse']);
  assert.equal((await visibleTexts(page, '.step')).length, 1);
  assert.deepEqual(await visibleTexts(page, 'output'), ['1 of 9 steps']);
  await page.press('Escape');
  assert.deepEqual(await visibleTexts(page, 'h2'), ['Browse', 'Search', 'Pay']);
  // What the filter has opened is closed again.
  assert.equal((await visibleTexts(page, '.step')).length, 6);
  await page.click('input[value=failed]');
  assert.deepEqual(await visibleTexts(page, 'h2'), ['Pay']);
  assert.deepEqual(await visibleTexts(page, '.does'), ['Tap button 1']);
  await page.click('input[value=healed]');
  assert.deepEqual(await visibleTexts(page, 'h2'), ['Search']);
  await page.click('input[type=search]');
  await page.type('nowhere');
  assert.deepEqual(await visibleTexts(page, '.none'), ['Nothing fits the filter.']);
});

const focused = `document.activeElement.closest('.step, .test')?.querySelector('h2, .does').textContent`;

test('is walked through by keys', async (t) => {
  const { page } = await openThreeTests(t);
  await page.press('n');
  assert.equal(await page.evaluate("document.activeElement.closest('.test').querySelector('h2').textContent"), 'Search');
  assert.equal(await page.evaluate("document.activeElement.closest('.step').className"), 'step healed');
  await page.press('n');
  assert.equal(await page.evaluate("document.activeElement.closest('.step').className"), 'step failed');
  await page.press('n');
  assert.equal(await page.evaluate("document.activeElement.closest('.step').className"), 'step healed');
  await page.press('p');
  assert.equal(await page.evaluate("document.activeElement.closest('.step').className"), 'step failed');
  assert.ok(await page.evaluate("document.activeElement.closest('.step').querySelector('img').checkVisibility()"));
  await page.press('Enter');
  assert.equal(await page.evaluate('document.activeElement.parentElement.open'), false);
  await page.press('ArrowUp');
  assert.equal(await page.evaluate(focused), 'Tap button 0');
  await page.press('ArrowUp');
  assert.equal(await page.evaluate(focused), 'Pay');
  await page.press('/');
  assert.equal(await page.evaluate('document.activeElement.type'), 'search');
  assert.equal(await page.evaluate('document.activeElement.value'), '');
  await page.press('n');
  assert.equal(await page.evaluate('document.activeElement.value'), 'n');
});

test('opens and closes everything at once', async (t) => {
  const { page } = await openThreeTests(t);
  await page.click('button');
  assert.equal((await visibleTexts(page, '.step')).length, 9);
  assert.equal((await visibleTexts(page, 'figure')).length, 16);
  await page.click('button');
  assert.equal((await visibleTexts(page, '.step')).length, 0);
});

test('works without scripts', async (t) => {
  const { page } = await openThreeTests(t, { scripts: false });
  assert.deepEqual(await visibleTexts(page, 'h2'), ['Browse', 'Search', 'Pay']);
  assert.deepEqual(await visibleTexts(page, 'form'), []);
  assert.equal((await visibleTexts(page, '.step')).length, 6);
  await page.click('.test summary');
  assert.equal((await visibleTexts(page, '.step')).length, 9);
});

/** The lowest contrast between a text in sight and what is behind it, with the text. */
function lowestContrast() {
  const canvas = document.createElement('canvas').getContext('2d', { willReadFrequently: true });
  const rgba = (color) => {
    canvas.clearRect(0, 0, 1, 1);
    canvas.fillStyle = color;
    canvas.fillRect(0, 0, 1, 1);
    const [r, g, b, a] = canvas.getImageData(0, 0, 1, 1).data;
    return [r, g, b, a / 255];
  };
  const behind = (element) => {
    const color = rgba(getComputedStyle(element).backgroundColor);
    if (color[3] === 1 || !element.parentElement) return color;
    const below = behind(element.parentElement);
    return [0, 1, 2].map((i) => color[i] * color[3] + below[i] * (1 - color[3])).concat(1);
  };
  const light = (color) => {
    const [r, g, b] = color.slice(0, 3).map((each) => {
      const part = each / 255;
      return part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4;
    });
    return 0.2126 * r + 0.7152 * g + 0.0722 * b;
  };
  let lowest = [21, ''];
  for (const element of document.querySelectorAll('body *')) {
    const own = [...element.childNodes].some((node) => node.nodeType === 3 && node.data.trim());
    if (!own || !element.checkVisibility() || ['SCRIPT', 'STYLE'].includes(element.tagName)) continue;
    const both = [light(rgba(getComputedStyle(element).color)), light(behind(element))];
    const contrast = (Math.max(...both) + 0.05) / (Math.min(...both) + 0.05);
    if (contrast < lowest[0]) lowest = [contrast, element.textContent];
  }
  return lowest;
}

test('is legible in light, in dark and on paper', async (t) => {
  const { page } = await openThreeTests(t);
  await page.click('button');
  const backgrounds = [];
  for (const look of [{ colors: 'light' }, { colors: 'dark' }, { colors: 'dark', media: 'print' }]) {
    await page.show(look);
    const [contrast, text] = await page.evaluate(lowestContrast);
    assert.ok(contrast >= 4.5, `${JSON.stringify(look)}: "${text}" has a contrast of ${contrast}`);
    backgrounds.push(await page.evaluate('getComputedStyle(document.body).backgroundColor'));
  }
  assert.deepEqual(backgrounds, ['rgb(251, 251, 250)', 'rgb(18, 20, 23)', 'rgb(255, 255, 255)']);
});

test('fits a narrow screen', async (t) => {
  const { page } = await openThreeTests(t, { width: 340, height: 700 });
  await page.click('button');
  assert.equal(await page.evaluate('document.documentElement.scrollWidth - document.documentElement.clientWidth'), 0);
  const tops = await page.evaluate(() =>
    [...document.querySelectorAll('.step.failed img')].map((each) => each.getBoundingClientRect().y),
  );
  assert.equal(tops[0], tops[1]);
});

test('lists every step on paper', async (t) => {
  const { page } = await openThreeTests(t);
  await page.show({ media: 'print' });
  assert.deepEqual(await visibleTexts(page, 'form'), []);
  const heights = await page.evaluate(() =>
    [...document.querySelectorAll('.step')].map((each) => each.getBoundingClientRect().height),
  );
  assert.equal(heights.length, 9);
  assert.ok(heights.every((height) => height > 0));
  const { data } = await page.send('Page.printToPDF');
  assert.ok(Buffer.from(data, 'base64').toString('latin1').startsWith('%PDF'));
});

test('says to a screen reader what is where', async (t) => {
  const { page } = await openThreeTests(t);
  const { nodes } = await page.send('Accessibility.getFullAXTree');
  const named = nodes.filter((node) => !node.ignored).map((node) => [node.role?.value, node.name?.value ?? '']);
  const roles = named.map(([role]) => role);
  for (const role of ['banner', 'search', 'main', 'contentinfo', 'heading', 'list']) assert.ok(roles.includes(role), role);
  const unnamed = named.filter(([role, name]) => ['image', 'searchbox', 'radio', 'button', 'link'].includes(role) && !name);
  assert.deepEqual(unnamed, []);
  assert.ok(named.some(([role, name]) => role === 'searchbox' && name === 'Filter'));
});

test('takes five hundred steps with pictures, one after the other', async (t) => {
  const home = new Home(t);
  const steps = Array.from({ length: 500 }, (_, i) => makeStep(i));
  const trace = { artifactsDir: home.capture('long', 500), lastStepIndex: 499 };
  const started = Date.now();
  const { file, peak } = await home.report('html', makeResult({ tests: [makeTest('Long', steps, { trace })] }));
  const seconds = (Date.now() - started) / 1000;
  const weight = statSync(file).size;
  const inMebibytes = (bytes) => `${(bytes / 1024 / 1024).toFixed(1)} MiB`;
  t.diagnostic(`${inMebibytes(weight)} in ${seconds} s with ${inMebibytes(peak)} of memory`);
  // What it shows fits into memory many times over, and is not kept there.
  assert.ok(peak < 100 * 1024 * 1024, inMebibytes(peak));
  const page = await (await Browser.start(t)).open(file);
  assert.equal(await page.evaluate("document.querySelectorAll('.step').length"), 500);
  assert.equal(await page.evaluate("document.querySelectorAll('img').length"), 1000);
});

test('takes ten thousand steps', async (t) => {
  const steps = Array.from({ length: 10_000 }, (_, i) => makeStep(i, i === 9_999 ? { status: 'failed' } : {}));
  const { file } = await new Home(t).report(
    'html',
    makeResult({ status: 'failed', tests: [makeTest('Long', steps, { status: 'failed' })] }),
  );
  const page = await (await Browser.start(t)).open(file);
  await page.press('/');
  await page.type('button 9999');
  assert.deepEqual(await visibleTexts(page, '.does'), ['Tap button 9999']);
});
