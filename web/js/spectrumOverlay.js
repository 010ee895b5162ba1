/** What is drawn over the spectrum's trace: channel bands, peaks, harmonics and masks. */

import { engineering, figure, figures, level } from './format.js';
import { variable } from './palette.js';

export const channelStage = 'channel_measurements_filter';

/** Text of a mask option, "f1,f2,...,l1,l2,..." or one level, as breakpoints. */
function maskPoints(text, limits) {
  const numbers = figures(text);
  if (numbers.length === 1) return Number.isFinite(numbers[0]) ? limits.map((f) => [f, numbers[0]]) : [];
  const n = Math.floor(numbers.length / 2);
  return Array.from({ length: n }, (_, i) => [numbers[i], numbers[n + i]]);
}

/** A dot with a text above it. */
export function tag(context, plot, x, y, text, colour) {
  if (!Number.isFinite(x) || !Number.isFinite(y)) return;
  const ratio = window.devicePixelRatio || 1;
  const px = plot.canvasX(x);
  const py = plot.canvasY(y);
  if (px < plot.chart.bbox.left || px > plot.chart.bbox.left + plot.chart.bbox.width) return;
  context.fillStyle = colour;
  context.beginPath();
  context.arc(px, py, 3 * ratio, 0, 2 * Math.PI);
  context.fill();
  plot.label(context, text, px - 3 * ratio * text.length, py - 8 * ratio, colour);
}

export class SpectrumOverlay {
  /** client: whose options say where the bands and masks are; unit(): unit of the levels. */
  constructor(client, unit) {
    this.client = client;
    this.unit = unit;
  }

  /** Channel band and offsets, peaks, harmonics and the mask on the trace. */
  draw(context, plot, measurements) {
    if (measurements.channel) this.drawChannel(context, plot, measurements.channel);
    if (measurements.spectralMask) this.drawMask(context, plot, measurements.spectralMask);
    if (measurements.peaks) {
      const y = figures(measurements.peaks.peaks);
      figures(measurements.peaks.locations).forEach((x, i) => tag(context, plot, x, y[i], String(i + 1), variable('--accent')));
    }
    if (measurements.distortion) {
      const y = figures(measurements.distortion.amplitude);
      const names = this.client.value('distortion_measurements_filter', 'distortionType') === 'intermodulation'
        ? ['F1', 'F2', '2F1−F2', '2F2−F1'] : null;
      figures(measurements.distortion.frequency).forEach((x, i) => tag(context, plot, x, y[i], names?.[i] ?? `H${i + 1}`, variable('--good')));
    }
  }

  band(context, plot, from, to, colour, text) {
    if (!(to > from)) return;
    const { bbox } = plot.chart;
    const left = plot.canvasX(from);
    const right = plot.canvasX(to);
    context.fillStyle = `color-mix(in srgb, ${colour} 14%, transparent)`;
    context.fillRect(left, bbox.top, right - left, bbox.height);
    context.strokeStyle = colour;
    context.lineWidth = 1;
    context.strokeRect(left, bbox.top, right - left, bbox.height);
    plot.label(context, text, left + 6, bbox.top + bbox.height - 6, colour);
  }

  drawChannel(context, plot, channel) {
    const value = (name, fallback) => this.client.value(channelStage, name, fallback);
    const start = value('measurementChannelStartFrequency', NaN);
    const stop = value('measurementChannelStopFrequency', NaN);
    if (value('channelMeasurementsType') === 'acpr') {
      this.band(context, plot, start, stop, variable('--accent'), level(figure(channel.channelPower), this.unit()));
      const width = value('adjacentBW', stop - start);
      const centre = (start + stop) / 2;
      const lower = figures(channel.acprLower);
      const upper = figures(channel.acprUpper);
      (value('acprOffsets') ?? []).slice(0, lower.length).forEach((offset, i) => {
        this.band(context, plot, centre - offset - width / 2, centre - offset + width / 2, variable('--faint'), level(lower[i], 'dBc'));
        this.band(context, plot, centre + offset - width / 2, centre + offset + width / 2, variable('--faint'), level(upper[i], 'dBc'));
      });
    } else {
      this.band(context, plot, figure(channel.startFrequency), figure(channel.stopFrequency), variable('--accent'),
        `OBW ${engineering(figure(channel.occupiedBW), 'Hz')}`);
    }
  }

  drawMask(context, plot, mask) {
    const stage = 'spectral_mask_tester_filter';
    const value = (name, fallback) => this.client.value(stage, name, fallback);
    const enabled = value('enabledMasks', 'none');
    const shift = value('maskFrequencyOffset', 0);
    const reference = figure(mask.spectrumPeak);
    const ratio = window.devicePixelRatio || 1;
    for (const [name, word, status] of [['upperMask', 'upper', mask.upperMaskStatus], ['lowerMask', 'lower', mask.lowerMaskStatus]]) {
      if (enabled !== word && enabled !== 'upper-and-lower') continue;
      const points = maskPoints(value(name, ''), value('frequencyLimits', [-5000, 5000]));
      context.strokeStyle = variable(status === 'passing' ? '--good' : '--bad');
      context.lineWidth = 2 * ratio;
      context.beginPath();
      points.forEach(([f, l], i) => {
        const px = plot.canvasX(f + (points.length > 2 ? shift : 0));
        const py = plot.canvasY(l + reference);
        if (i === 0) context.moveTo(px, py); else context.lineTo(px, py);
      });
      context.stroke();
    }
  }
}
