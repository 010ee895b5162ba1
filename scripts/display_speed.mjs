#!/usr/bin/env node
/**
 * How fast the display draws: 30 updates a second of four channels of 4097 points with a spectrogram, to one browser:
 * node scripts/display_speed.mjs [SECONDS]. Wants a release build and what ./test installs. Prints the table of docs/display-speed.md.
 */

import { drawn, launch, onPage } from '../tests/web/support.mjs';

const seconds = Number(process.argv[2] ?? 20);
// 8192 samples make 4097 points. A new spectrum for each update wants 30 * 8192 samples a second.
const args = ['gen:multitone?frequency=10k,35k,80k&rate=245760&channels=4&noise=1m&duration=inf', '--deck', 'spectrum', '--frame', '8192',
  '--updates', '31', '--set', 'frequencyResolutionMethod=window-length', '--set', 'windowLength=8192', '--set', 'autoFFTLength=false',
  '--set', 'fftLength=8192', '--set', 'showSpectrogram=true'];

const sorted = (list) => [...list].sort((a, b) => a - b);
const quantile = (list, q) => (list.length ? sorted(list)[Math.min(list.length - 1, Math.floor(q * list.length))] : NaN);
const row = (name, list) => console.log(`| ${name} | ${quantile(list, 0.5).toFixed(1)} | ${quantile(list, 0.95).toFixed(1)} |`);

const browser = await launch();
try {
  await onPage(args, async (page) => {
    await drawn(page);
    const shape = await page.evaluate(() => [wavedeck.state.view.message.signals[0].channel.length, wavedeck.state.view.message.spectrum.spectrumLength]);
    await page.waitForTimeout(3000);
    const before = await page.evaluate(() => {
      wavedeck.state.timings.length = 0;
      return { time: performance.now(), received: wavedeck.state.received, missed: wavedeck.state.missed, bytes: wavedeck.connection.bytes };
    });
    await page.waitForTimeout(seconds * 1000);
    const { timings, after } = await page.evaluate(() => ({
      timings: wavedeck.state.timings,
      after: { time: performance.now(), received: wavedeck.state.received, missed: wavedeck.state.missed, bytes: wavedeck.connection.bytes },
    }));
    const elapsed = (after.time - before.time) / 1000;
    const of = (name) => timings.map((timing) => timing[name]);
    console.log(`${shape[0]} channels of ${shape[1]} points; ${((after.bytes - before.bytes) / 1e6 / elapsed).toFixed(1)} MB/s, ` +
      `${((after.bytes - before.bytes) / 1e6 / (after.received - before.received)).toFixed(2)} MB an update`);
    console.log(`sent ${((after.received - before.received) / elapsed).toFixed(1)}/s, drawn ${(timings.length / elapsed).toFixed(1)}/s, ` +
      `missed ${after.missed - before.missed} of ${after.received - before.received}\n`);
    console.log('| Step | median, ms | 95 %, ms |\n|---|---|---|');
    row('program: building the message', of('building'));
    row('program: writing it as text', of('writing'));
    row('sending and waiting in queues', timings.map((t) => t.delay - t.parse - t.take - t.wait - t.draw));
    row('page: parsing', of('parse'));
    row('page: taking in, with the spectrogram', of('take'));
    row('page: waiting for the screen', of('wait'));
    row('page: drawing', of('draw'));
    row('from sending to drawn', of('delay'));
  });
} finally {
  await browser.close();
}
