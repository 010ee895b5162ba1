#!/usr/bin/env node
/**
 * Makes the pictures of the display that README.md shows: node scripts/screenshots.mjs [NAME]...
 * Wants a release build, what ./test installs, and pngquant, which keeps the files small.
 */

import { execFileSync } from 'node:child_process';
import { mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { ended, launch, onPage } from '../tests/web/support.mjs';

const pictures = new URL('../docs/pictures/', import.meta.url).pathname;
const folder = mkdtempSync(join(tmpdir(), 'wavedeck_pictures_'));

/** A windowed low-pass of 51 taps, cut off at a tenth of the rate. */
const taps = Array.from({ length: 51 }, (_, i) => {
  const n = i - 25;
  return (n === 0 ? 0.2 : Math.sin(0.2 * Math.PI * n) / (Math.PI * n)) * (0.54 + 0.46 * Math.cos(Math.PI * n / 25));
});
const tapsFile = join(folder, 'lowpass.txt');
writeFileSync(tapsFile, taps.join('\n'));

const set = (...settings) => settings.flatMap((setting) => ['--set', setting]);
const shots = {
  spectrum: {
    args: ['gen:twotone?frequency=5k&spacing=1k&duration=3&noise=1m&im3=-50', '--deck', 'spectrum', '--measure', 'peaks,channel,distortion,mask',
      ...set('distortionType=intermodulation', 'plotMaxHoldTrace=true', 'enabledMasks=upper',
        'upperMask=0,4200,4200,6800,6800,24000,-20,-20,28,28,-20,-20')],
  },
  spectrogram: {
    args: ['gen:fm?frequency=12k&deviation=8k&modulation=0.3&duration=7&noise=1m', '--deck', 'spectrum', ...set('showSpectrogram=true', 'forgettingFactor=0')],
    theme: 'light',
  },
  time: {
    args: ['gen:pulse?period=10m&width=3m&rise=0.8m&fall=1.2m&duration=1&noise=5m', '--deck', 'time', '--measure', 'bilevel,trigger', '--span-time', '0.03'],
    height: 880,
  },
  phasenoise: {
    args: ['gen:phasenoise?level=-90&duration=4&floor=-125', '--deck', 'spectrum', '--measure', 'peaks,phasenoise',
      ...set('autoRBW=false', 'rbw=10', 'window=blackman-harris')],
    theme: 'light',
  },
  response: { args: [tapsFile, '--deck', 'response'] },
};

const names = process.argv.length > 2 ? process.argv.slice(2) : Object.keys(shots);
const browser = await launch();
try {
  for (const name of names) {
    await onPage(shots[name].args, async (page) => {
      await ended(page);
      await page.evaluate((theme) => { document.documentElement.dataset.theme = theme; wavedeck.state.view.restyle(); }, shots[name].theme ?? 'dark');
      await page.click('#auto');
      await page.mouse.move(1, 1);
      await page.waitForTimeout(300);
      const file = join(pictures, `${name}.png`);
      await page.screenshot({ path: file });
      execFileSync('pngquant', ['--force', '--skip-if-larger', '--output', file, '64', file]);
    }, { viewport: { width: 1120, height: shots[name].height ?? 660 } });
  }
} finally {
  await browser.close();
  rmSync(folder, { recursive: true });
}
