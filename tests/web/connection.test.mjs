/** The page and its server: reconnecting, tunes that lead nowhere. */

import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { drawn, launch, limitTime, serve, status } from './support.mjs';

limitTime(100);
let browser;
before(async () => { browser = await launch(); });
after(() => browser?.close());

test('the page finds its way back when the program comes back, also with other decks', async () => {
  let server = await serve(['gen:tone?duration=inf', '--deck', 'spectrum']);
  const page = await browser.newPage();
  try {
    await page.goto(server.url);
    await drawn(page);
    await server.stop();
    await page.waitForFunction(() => document.getElementById('status').textContent.includes('reconnecting'));
    // Tunes cannot go out now, and say so.
    assert.equal(await page.evaluate(() => wavedeck.state.clients.get('spectrum').tune('spectrum_estimator_filter', { rbw: 10 })
      .then(() => 'tuned', (error) => error.message)), 'not connected');
    server = await serve(['gen:square?duration=inf', '--deck', 'time', '--measure', 'stats'], server.port);
    await drawn(page, (view) => view.message.measurements.stats);
    assert.deepEqual(await page.$$eval('#decks button', (tabs) => tabs.map((tab) => tab.textContent)), ['time']);
    assert.equal((await status(page)).State, 'running');
  } finally {
    await page.close();
    await server.stop();
  }
});

test('tunes that lead nowhere come back with a reason and change nothing', async () => {
  const server = await serve(['gen:tone?duration=inf', '--deck', 'spectrum']);
  const page = await browser.newPage();
  try {
    await page.goto(server.url);
    await drawn(page);
    for (const [client, stage, options, reason] of [
      ['time', 'trigger_filter', { level: 1 }, 'no client `time`'],
      ['spectrum', 'trigger_filter', { level: 1 }, 'trigger_filter: no option `level` in this deck'],
      ['spectrum', 'spectrum_estimator_filter', { colour: 'red' }, 'spectrum_estimator_filter: no option `colour` in this deck'],
      ['spectrum', 'spectrum_estimator_filter', { frequencyOffset: 'x' }, null],
      ['spectrum', 'spectrum_estimator_filter', { window: 7 }, null],
      ['spectrum', 'spectrum_estimator_filter', { window: { a: 1 } }, null],
    ]) {
      const answer = await page.evaluate((tune) => wavedeck.connection.tune(...tune).then(() => null, (error) => error.message), [client, stage, options]);
      if (reason) assert.equal(answer, reason); else assert.ok(answer?.includes(Object.keys(options)[0]), answer);
    }
    assert.equal(await page.evaluate(() => wavedeck.state.clients.get('spectrum').value('spectrum_estimator_filter', 'window')), 'hann');
    const before = await page.evaluate(() => wavedeck.state.drawn);
    await page.waitForFunction((sequence) => wavedeck.state.drawn > sequence, before);
  } finally {
    await page.close();
    await server.stop();
  }
});
