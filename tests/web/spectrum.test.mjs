/** The spectrum deck on the page: figures, tuning, hold, markers, spectrogram, phase noise. */

import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { test } from 'node:test';
import { browser, drawn, ended, near, onPage, place, quantity, reportOf, says, set, shareBrowser, status, tableRows } from './support.mjs';

shareBrowser();

const tones = 'gen:twotone?frequency=6k&spacing=2k&duration=1&noise=1m&im3=-40';
const noise = 'gen:noise?duration=inf';

test('the figures on the page are those of the report', async () => {
  const args = [tones, '--deck', 'spectrum', '--measure', 'peaks,distortion,channel', '--set', 'distortionType=intermodulation'];
  await onPage(args, async (page) => {
    await ended(page);
    const report = reportOf(args);
    const check = async (title, expected) => {
      const rows = await tableRows(page, title);
      expected.forEach(({ frequency, level }, i) => {
        near(quantity(rows[i][1]), frequency.value, 1e-4 * frequency.value, `${title} ${i} frequency`);
        near(parseFloat(rows[i][2]), level.value, 0.006, `${title} ${i} level`);
        assert.match(rows[i][2], new RegExp(`${level.unit}$`));
      });
    };
    await check('Peaks', report.peaks.peaks);
    await check('Distortion', report.distortion.tones);
    near(quantity((await tableRows(page, 'Channel'))[1][1]), report.channel.occupiedBandwidth.value, 1, 'occupied bandwidth');
    const shown = await status(page);
    near(quantity(shown.RBW), report.rbw.value, 0.01, 'RBW');
    assert.equal(shown.Averages, `${Math.min(report.averages, report.updates)} of ${report.averages}`);
    // The curve itself: its largest drawn point lies where the first peak is.
    const top = await page.evaluate(() => {
      const [x, y] = wavedeck.state.view.panes.spectrum.chart.data;
      return y.reduce((best, v, i) => (v > best.y ? { x: x[i], y: v } : best), { x: 0, y: -Infinity });
    });
    assert.equal(top.x, report.peaks.peaks[0].frequency.value);
    near(top.y, report.peaks.peaks[0].level.value, 1e-9, 'height of the curve');
  });
});

test('tunes change the spectrum, bad values show the error, every browser follows', async () => {
  await onPage([noise, '--deck', 'spectrum'], async (page, server) => {
    const enbw = (view) => view.message.spectrum.enbw;
    near(await page.evaluate(`(${enbw})(wavedeck.state.view)`), 1.5, 1e-6, 'ENBW of the Hann window');
    const other = await browser.newPage();
    await other.goto(server.url);
    await drawn(other);
    await set(page, 'window', 'flat-top');
    await drawn(page, (view) => Math.abs(view.message.spectrum.enbw - 3.77) < 0.01);
    await other.waitForFunction(() => document.querySelector('[data-option="window"]').value === 'flat-top');
    await other.close();

    await set(page, 'autoRBW', false);
    await set(page, 'rbw', '0.4k');
    await drawn(page, (view) => Math.abs(view.message.spectrum.rbw - 400) < 20);
    await says(page, 'RBW', /^(39|40|41)\d(\.\d+)? Hz$/);
    await set(page, 'span', '6k');
    await drawn(page, (view) => view.main.rangeX().join() === '9000,15000');
    await says(page, 'Span', /^6 kHz$/);
    for (const [option, text, shown] of [['span', '', '0,24000'], ['startFrequency', '5k', '5000,24000'], ['stopFrequency', '9k', '5000,9000'],
      ['startFrequency', '12k', '12000,16000'], ['stopFrequency', '9k', '5000,9000'], ['centerFrequency', '8k', '6000,10000'],
      ['centerFrequency', '', '0,24000']]) {
      await set(page, option, text);
      await drawn(page, (view, range) => view.main.rangeX().join() === range, shown);
      if (shown === '5000,9000') assert.equal(await page.inputValue('[data-option="startFrequency"]'), '5000');
    }
    await set(page, 'spectrumUnits', 'dbw');
    await drawn(page, (view) => view.panes.spectrum.chart.axes[1].label() === 'Level / dBW');

    for (const [option, value] of [['rbw', 'abc'], ['rbw', '5K'], ['overlapPercent', '1,2']]) {
      await set(page, option, value);
      await page.locator('#message').getByText(option).waitFor();
      assert.ok(await page.locator(`[data-option="${option}"].rejected`).isVisible());
    }
    await set(page, 'rbw', '800');
    await drawn(page, (view) => Math.abs(view.message.spectrum.rbw - 800) < 40);
    assert.equal(await page.locator('#message').isVisible(), false);
  });
});

test('hold traces start anew, pause and step', async () => {
  const args = [noise, '--deck', 'spectrum', '--set', 'plotMaxHoldTrace=true', '--set', 'averagingMethod=running', '--set', 'spectralAverages=1'];
  await onPage(args, async (page) => {
    // A hold trace never falls unless it starts anew: after a few dozen lines of noise the new one lies lower somewhere.
    const holdOf = (view) => [...view.panes.spectrum.traces[1].values];
    await drawn(page, (view) => view.message.spectrum.numUpdatesProcessed > 30);
    const before = await page.evaluate(`(${holdOf})(wavedeck.state.view)`);
    await page.waitForFunction((sequence) => wavedeck.state.drawn > sequence, await page.evaluate(() => wavedeck.state.drawn));
    const later = await page.evaluate(`(${holdOf})(wavedeck.state.view)`);
    assert.ok(later.every((v, i) => v >= before[i]), 'the hold trace fell by itself');
    await page.keyboard.press('h');
    await drawn(page, (view, earlier) => view.panes.spectrum.traces[1]?.values.some((v, i) => v < earlier[i] - 1), before);

    await page.keyboard.press(' ');
    const held = await page.evaluate(() => wavedeck.state.drawn);
    await page.waitForFunction((sequence) => wavedeck.state.received > sequence + 5, held);
    assert.equal(await page.evaluate(() => wavedeck.state.drawn), held);
    await says(page, 'State', /^held$/);
    await page.keyboard.press('.');
    await page.waitForFunction((sequence) => wavedeck.state.drawn > sequence, held);
    const stepped = await page.evaluate(() => wavedeck.state.drawn);
    await page.waitForFunction((sequence) => wavedeck.state.received > sequence + 3, stepped);
    assert.equal(await page.evaluate(() => wavedeck.state.drawn), stepped);
    await page.click('#run');
    await page.waitForFunction((sequence) => wavedeck.state.drawn > sequence, stepped);
  });
});

test('markers snap to peaks, the wheel and the box zoom, double click shows all', async () => {
  await onPage([tones, '--deck', 'spectrum'], async (page) => {
    await ended(page);
    const range = () => page.evaluate(() => wavedeck.state.view.panes.spectrum.rangeX());
    await page.mouse.click(...await place(page, 'spectrum', 6100, 0));
    await page.keyboard.down('Shift');
    await page.mouse.click(...await place(page, 'spectrum', 7900, 0));
    await page.keyboard.up('Shift');
    await page.waitForSelector('[data-table="Markers"] tr:nth-child(3)');
    const rows = await tableRows(page, 'Markers');
    assert.deepEqual(rows.map((row) => quantity(row[1])), [6000, 8000, 2000]);
    near(parseFloat(rows[2][2]), 0, 0.01, 'difference of two equal tones');
    await page.keyboard.press('Delete');
    await page.waitForSelector('[data-table="Markers"]', { state: 'detached' });
    await page.keyboard.press('m');
    await page.waitForSelector('[data-table="Markers"]');
    const [[, frequency, highest]] = await tableRows(page, 'Markers');
    const [[, strongest, most]] = await tableRows(page, 'Peaks');
    assert.deepEqual([frequency, highest], [strongest, most]);

    await page.mouse.move(...await place(page, 'spectrum', 7000, 0));
    await page.mouse.wheel(0, -200);
    await page.waitForFunction(() => wavedeck.state.view.panes.spectrum.rangeX()[1] < 24000);
    const [low, high] = await range();
    near((7000 - low) / (high - low), 7000 / 24000, 0.02, 'the frequency under the wheel stays');
    await page.mouse.dblclick(...await place(page, 'spectrum', 7000, 0));
    assert.deepEqual(await range(), [0, 24000]);
    await page.mouse.move(...await place(page, 'spectrum', 5000, 10));
    await page.mouse.down();
    await page.mouse.move(...await place(page, 'spectrum', 9000, -50), { steps: 4 });
    await page.mouse.up();
    (await range()).forEach((v, i) => near(v, [5000, 9000][i], 60, 'box'));
    const levels = await page.evaluate(() => wavedeck.state.view.panes.spectrum.rangeY());
    levels.forEach((v, i) => near(v, [-50, 10][i], 2, 'box'));
  });
});

test('the spectrogram keeps time, its levels can be fixed, the mask is drawn as it fares', async () => {
  const args = ['gen:chirp?start=1k&stop=20k&period=30&duration=30', '--deck', 'spectrum', '--measure', 'mask', '--set', 'showSpectrogram=true',
    '--set', 'enabledMasks=upper', '--set', 'upperMask=-30', '--set', 'forgettingFactor=0'];
  await onPage(args, async (page) => {
    // Two dozen lines without an update that was missed, which leaves a gap.
    await drawn(page, (view) => view.waterfall.rows.slice(0, 24).filter(([first]) => !Number.isNaN(first)).length === 24);
    await page.keyboard.press(' ');
    await says(page, 'State', /^held$/);
    assert.ok((await tableRows(page, 'Mask')).some(([name, text]) => name === 'Now' && text === 'failing'));
    // The chirp rises by 19 kHz in half a minute: a line that is older by t lies 19k * t / 30 lower.
    const rise = 19000 / 30;
    const tops = await page.evaluate(() => {
      const { waterfall, seconds, fullFrequency } = wavedeck.state.view;
      return waterfall.rows.map((row, i) => [i * seconds / waterfall.depth, fullFrequency[1] * row.indexOf(Math.max(...row)) / (row.length - 1)])
        .filter(([, frequency]) => frequency >= 0);
    });
    assert.ok(tops.length > 15);
    // A line is 64 ms of the chirp, somewhere in which lies its strongest bin, of 23 Hz; where an update was missed the gap may be one line off.
    tops.forEach(([ago, frequency]) => near(frequency, tops[0][1] - rise * ago, rise * 2 * 0.064 + 24, `line ${ago} s ago`));
    const height = await page.evaluate(() => wavedeck.state.view.seconds / wavedeck.state.view.waterfall.depth);
    await page.mouse.click(...await place(page, 'waterfall', 10000, 1));
    await page.waitForSelector('[data-table="Markers in the spectrogram"]');
    const [[, frequency, ago, level]] = await tableRows(page, 'Markers in the spectrogram');
    near(quantity(frequency), 10000, 60, 'marker'); near(quantity(ago), 1, height, 'marker');
    const lines = await page.evaluate(([x, y]) => {
      const { rows, columns } = wavedeck.state.view.waterfall;
      const column = Math.floor(x / 24000 * columns);
      return [-1, 0, 1].flatMap((line) => [-1, 0, 1].map((c) => rows[y + line][column + c]));
    }, [quantity(frequency), Math.floor(quantity(ago) / height)]);
    assert.ok(lines.some((value) => Math.abs(value - parseFloat(level)) < 0.006), `${level} stands nowhere near the marker`);
    await page.fill('#level-low', '-80');
    await page.fill('#level-high', '-20');
    await page.press('#level-high', 'Enter');
    assert.deepEqual(await page.evaluate(() => wavedeck.state.view.waterfall.range), [-80, -20]);
    await page.click('#auto');
    assert.notDeepEqual(await page.evaluate(() => wavedeck.state.view.waterfall.range), [-80, -20]);
  });
});

test('phase noise on a logarithmic axis, with the spots of the report; picture and trace are saved', async () => {
  const args = ['gen:phasenoise?duration=1', '--deck', 'spectrum', '--measure', 'phasenoise'];
  await onPage(args, async (page) => {
    await ended(page);
    const rows = await tableRows(page, 'Phase noise');
    const spots = reportOf(args).phaseNoise.spots;
    assert.deepEqual(rows.map((row) => quantity(row[0])), spots.map(({ offset }) => offset.value));
    rows.forEach((row, i) => near(parseFloat(row[1]), spots[i].level.value, 0.006, `spot ${i}`));
    assert.deepEqual(await page.evaluate(() => wavedeck.state.view.panes.phaseNoise.labels.map((label) => label.text)), rows.map((row) => row[1]));
    const [decades, ticks] = await page.evaluate(() => {
      const { chart } = wavedeck.state.view.panes.phaseNoise;
      return [[1000, 10000, 2000, 20000].map((v) => chart.valToPos(v, 'x')), chart.axes[0].values(chart, [500, 600, 1000, 2000, 3000, 10000])];
    });
    near(decades[1] - decades[0], decades[3] - decades[2], 1, 'a decade is as wide anywhere');
    assert.deepEqual(ticks, ['500', '', '1k', '2k', '', '10k']);

    const save = async (id) => {
      const [download] = await Promise.all([page.waitForEvent('download'), page.click(id)]);
      return readFileSync(await download.path());
    };
    const lines = (await save('#table')).toString().trim().split('\n').filter((line) => !line.startsWith('#'));
    const [x, y] = await page.evaluate(() => {
      const { x: frequencies, traces } = wavedeck.state.view.panes.spectrum;
      return [[...frequencies], [...traces[0].values]];
    });
    assert.equal(lines[0], '"Frequency [Hz]","spectrum [dBm]"');
    assert.deepEqual(lines.slice(1).map((line) => line.split(',').map(Number)), x.map((f, i) => [f, y[i]]));
    assert.equal((await save('#picture')).subarray(1, 4).toString(), 'PNG');
  });
});
