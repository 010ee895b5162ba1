/** Decks over time, samples and filter responses on the page; traces without a browser. */

import assert from 'node:assert/strict';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, test } from 'node:test';
import { engineering, figures, level } from '../../web/js/format.js';
import { align, thinned } from '../../web/js/trace.js';
import { drawn, ended, near, onPage, quantity, reportOf, shareBrowser, status, tableRows } from './support.mjs';

shareBrowser();

const folder = mkdtempSync(join(tmpdir(), 'wavedeck_page_'));
after(() => rmSync(folder, { recursive: true }));

const pulses = 'gen:pulse?period=10m&width=3m&rise=1m&fall=1m';

test('pulses and statistics are those of the report, a triggered picture has its edge at zero', async () => {
  const args = [`${pulses}&duration=1`, '--deck', 'time', '--measure', 'stats,peaks,bilevel,trigger', '--span-time', '0.05'];
  await onPage(args, async (page) => {
    await ended(page);
    const report = reportOf(args);
    const figuresOf = async (title) => Object.fromEntries((await tableRows(page, title)).map(([name, ...cells]) => [name, cells]));
    const pulse = { ...await figuresOf('Levels'), ...await figuresOf('Pulses') };
    for (const [name, cell, key] of [['Rise, fall time', 0, 'riseTime'], ['Rise, fall time', 1, 'fallTime'], ['Period', 0, 'period'],
      ['Width', 0, 'posWidth'], ['Width', 1, 'negWidth'], ['Slew rate', 1, 'negSlewRate']]) {
      const { value } = report.bilevel[key];
      near(quantity(pulse[name][cell]), value, 1e-3 * Math.abs(value), key);
    }
    assert.equal(parseFloat(pulse['Duty cycle'][0]).toFixed(2), report.bilevel.posDutyCycle.value.toFixed(2));
    near(parseFloat((await figuresOf('Statistics')).RMS[0]), report.stats.rms, 1e-4, 'RMS');
    assert.equal((await status(page)).Trigger, 'triggered');
    // The edge rises from 0 to 1 in 1 ms, one sample 1/48: the trigger's level is reached where the axis says zero.
    const edge = await page.evaluate(() => {
      const { x, traces: [{ values }] } = wavedeck.state.view.main;
      const i = x.findIndex((t) => t >= 0);
      return [values[i - 1], values[i], ...x.slice(i - 1, i + 1)];
    });
    assert.ok(edge[0] <= 0.5 + 1e-9 && edge[1] >= 0.5 - 1e-9 && edge[1] > edge[0], `values around zero: ${edge}`);
    const [x, y] = await page.evaluate(() => ['x', 'y'].map((axis) => wavedeck.state.view.peaks.map((peak) => peak[axis])));
    x.forEach((t, i) => near(t + report.trigger.position.value, report.peaks.peaks[i].time.value, 1e-9, 'peak'));
    assert.deepEqual(y, report.peaks.peaks.map((peak) => peak.value));
  });
});

test('dragging the level line tunes the trigger', async () => {
  await onPage([`${pulses}&duration=inf`, '--deck', 'time', '--measure', 'trigger', '--span-time', '0.05'], async (page) => {
    await drawn(page, (view) => view.levels()[0]?.value === 0.5);
    const place = (value) => page.evaluate((v) => {
      const { chart } = wavedeck.state.view.main;
      const { left, top, width } = chart.over.getBoundingClientRect();
      return [left + width / 3, top + chart.valToPos(v, 'y')];
    }, value);
    await page.mouse.move(...await place(0.5));
    await page.mouse.down();
    await page.mouse.move(...await place(0.8), { steps: 3 });
    await page.mouse.up();
    await drawn(page, (view) => Math.abs(Number(view.trigger.level) - 0.8) < 0.02);
    assert.equal(await page.locator('[data-option="autoLevel"]').isChecked(), false);
    assert.deepEqual(await page.evaluate(() => wavedeck.state.view.main.view.x), null, 'a drag of the line zooms nothing');
  });
});

test('what is not finite leaves a gap', async () => {
  const values = Float64Array.from({ length: 2000 }, (_, i) => (i % 100 === 7 ? NaN : i % 100 === 9 ? Infinity : Math.sin(i / 50)));
  const file = join(folder, 'gaps.raw');
  writeFileSync(file, values);
  await onPage([file, '--format', 'f64', '--rate', '2k', '--deck', 'time', '--frame', '100', '--span-time', '1'], async (page) => {
    await ended(page);
    const [x, y] = await page.evaluate(() => wavedeck.state.view.main.chart.data);
    assert.ok(x.length > 500);
    x.forEach((t, i) => {
      const sample = Math.round(t * 2000);
      assert.equal(y[i] === null, !Number.isFinite(values[sample]), `sample ${sample} is ${y[i]}`);
    });
    // The traces' common range is that of the finite values alone.
    const [low, high] = await page.evaluate(() => wavedeck.state.view.main.rangeY());
    assert.ok(low > -1.5 && high < 1.5);
  });
});

test('magnitude and phase of a filter, and single frames', async () => {
  const file = join(folder, 'taps');
  writeFileSync(file, Array(10).fill('0.1').join('\n'));
  await onPage([file, '--deck', 'response'], async (page) => {
    await ended(page);
    const panes = await page.evaluate(() => wavedeck.state.view.panes.map((pane) => pane.chart.axes.map((axis) => axis.label())));
    assert.deepEqual(panes, [['Frequency / kHz', 'Magnitude / dB'], ['Frequency / kHz', 'Phase / °']]);
    // Ten equal taps have unit gain at 0 Hz; their side lobes peak near 3/20, 5/20, ... of the rate.
    near(await page.evaluate(() => wavedeck.state.view.main.traces[0].values[0]), 0, 1e-9, 'gain at 0 Hz');
    const rows = await tableRows(page, 'Peaks');
    near(quantity(rows[0][1]), reportOf([file, '--deck', 'response']).peaks.peaks[0].frequency.value, 1, 'first side lobe');
  });
  await onPage(['gen:tone?frequency=3k&duration=0.2', '--deck', 'frame', '--frame', '256', '--measure', 'peaks,stats'], async (page) => {
    await ended(page);
    const { axis, x, peaks } = await page.evaluate(() => {
      const { view } = wavedeck.state;
      return { axis: view.main.chart.axes[0].label(), x: [...view.main.x], peaks: view.peaks.map((p) => [p.y, view.main.traces[0].values[p.x]]) };
    });
    assert.equal(axis, 'Sample');
    assert.deepEqual(x.slice(0, 3), [0, 1, 2]);
    peaks.forEach(([told, drawnThere]) => near(told, drawnThere, 1e-12, 'a peak lies on the trace'));
  });
});

test('every deck fits a phone, light and dark', async () => {
  const args = [`${pulses}&duration=0.5`, '--deck', 'time', '--deck', 'spectrum', '--deck', 'frame', '--measure', 'stats,peaks,bilevel,trigger,channel,distortion',
    '--set', 'showSpectrogram=true'];
  await onPage(args, async (page) => {
    await ended(page);
    for (const key of ['1', '2', '3']) {
      await page.keyboard.press(key);
      await page.keyboard.press('t');
      await drawn(page);
      assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= window.innerWidth), `deck ${key} is wider than the screen`);
    }
    await page.keyboard.press('?');
    await page.locator('#keys').getByText('run or hold').waitFor();
    await page.keyboard.press('Escape');
  }, { viewport: { width: 360, height: 740 } });
});

test('thinning keeps bursts and gaps, traces on different grids meet', () => {
  const n = 100000;
  const x = Float64Array.from({ length: n }, (_, i) => i);
  const y = new Float64Array(n);
  y[54321] = 7;
  y[54322] = -3;
  y.fill(NaN, 20000, 30000);
  const [outX, outY] = thinned(x, [y], 0, n, 1000);
  assert.ok(outX.length <= 4000);
  assert.equal(Math.max(...outY), 7);
  assert.equal(Math.min(...outY), -3);
  assert.ok(outX.every((v, i) => i === 0 || v >= outX[i - 1]));
  const inGap = outX.map((v, i) => [v, outY[i]]).filter(([v]) => v > 20200 && v < 29800);
  assert.ok(inGap.length > 100 && inGap.every(([, v]) => v === null));
  const near54321 = outX[outY.indexOf(7)];
  near(near54321, 54321, n / 1000, 'the burst stays at its place');

  const joined = align([{ x: Float64Array.of(0, 2, 4), values: Float64Array.of(0, 2, 4) }, { x: Float64Array.of(1, 3), values: Float64Array.of(1, NaN) }]);
  assert.deepEqual([...joined.x], [0, 1, 2, 3, 4]);
  assert.deepEqual([...joined.traces[0].values], [0, 1, 2, 3, 4]);
  assert.deepEqual([...joined.traces[1].values], [NaN, 1, NaN, NaN, NaN]);
});

test('numbers read as an engineer writes them', () => {
  for (const [value, unit, text] of [[12500, 'Hz', '12.5 kHz'], [-0.00025, 's', '-250 µs'], [0, 'V', '0 V'], [999.9999, 'Hz', '1 kHz'],
    [NaN, 'Hz', '–'], [-Infinity, 'Hz', '−∞']]) assert.equal(engineering(value, unit), text);
  assert.equal(level(-3.14159, 'dBm'), '-3.14 dBm');
  assert.deepEqual(figures('[1e-3,-nan,inf,-inf]'), [0.001, NaN, Infinity, -Infinity]);
});
