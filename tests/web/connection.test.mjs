/** The page and its server: reconnecting. */

import assert from 'node:assert/strict';
import { test } from 'node:test';
import { browser, drawn, serve, shareBrowser, status } from './support.mjs';

shareBrowser();

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
