/** Spectrum deck: traces, hold traces, measurements drawn on them, spectrogram, phase noise. */

import { engineering, figure, figures, level } from './format.js';
import { traceColour, variable } from './palette.js';
import { Plot } from './plot.js';
import { channelTable, distortionTable, markerTable, maskTable, peakTable, phaseNoiseTable, table } from './tables.js';
import { align, positions, samples } from './trace.js';
import { Waterfall } from './waterfall.js';

const estimator = 'spectrum_estimator_filter';
const channelStage = 'channel_measurements_filter';

/** Unit words of the estimator as they are written. */
const unitSymbols = {
  dbm: 'dBm', dbw: 'dBW', dbfs: 'dBFS', dbv: 'dBV', dbuv: 'dBµV', watts: 'W', vrms: 'Vrms', auto: 'W', none: 'W',
};

/** Text of a mask option, "f1,f2,...,l1,l2,..." or one level, as breakpoints. */
function maskPoints(text, limits) {
  const numbers = figures(text);
  if (numbers.length === 1) return Number.isFinite(numbers[0]) ? limits.map((f) => [f, numbers[0]]) : [];
  const n = Math.floor(numbers.length / 2);
  return Array.from({ length: n }, (_, i) => [numbers[i], numbers[n + i]]);
}

export class SpectrumView {
  constructor(host, client, onChange) {
    this.host = host;
    this.client = client;
    this.onChange = onChange;
    this.waterfall = new Waterfall();
    this.waterfallAuto = true;
    this.panes = {};
  }

  get unit() {
    const word = this.client.value(estimator, 'spectrumUnits', 'dbm');
    const unit = unitSymbols[word] ?? word;
    const type = this.client.value(estimator, 'spectrumType', 'power');
    if (type === 'power-density') return `${unit}/Hz`;
    return unit;
  }

  pane(name, small, options) {
    if (!this.panes[name]) {
      const host = document.createElement('div');
      host.className = small ? 'plot small' : 'plot';
      host.dataset.pane = name;
      this.host.append(host);
      this.panes[name] = new Plot(host, options);
    }
    return this.panes[name];
  }

  drop(name) {
    this.panes[name]?.destroy();
    this.panes[name]?.host.remove();
    delete this.panes[name];
  }

  /** The pane that keys and buttons act on. */
  get main() { return this.panes.spectrum ?? this.panes.waterfall ?? this.panes.phaseNoise; }

  frequencyOptions(more) {
    return {
      xLabel: 'Frequency', xUnit: 'Hz', snap: true,
      onCursor: (plot, x, y) => { this.cursor = x === null ? null : { x, y, plot }; this.onChange(); },
      onMarkers: () => this.onChange(),
      onView: (plot) => {
        for (const other of [this.panes.spectrum, this.panes.waterfall]) {
          if (other && other !== plot) other.setX(plot.view.x);
        }
      },
      ...more,
    };
  }

  update(message) {
    this.message = message;
    const { spectrum } = message;
    const channels = (message.signals ?? []).filter(Boolean).flatMap((signal, s) => signal.channel.map((channel, c) => ({
      name: signal.channel.length > 1 || message.signals.length > 1 ? `signal ${s + 1}, channel ${c + 1}` : 'spectrum',
      x: positions(channel.frequency, channel.frequencyOffset), values: samples(channel), hold: signal.traceHold, index: c,
    })));
    const length = channels[0]?.x.length ?? 0;
    if (spectrum.showSpectrum && length) this.updateTraces(channels, length); else if (!spectrum.showSpectrum) this.drop('spectrum');
    if (spectrum.showSpectrogram && length) this.updateWaterfall(channels, length, spectrum); else if (!spectrum.showSpectrogram) this.drop('waterfall');
    this.updatePhaseNoise(message.phaseNoise);
    this.onChange();
  }

  updateTraces(channels, length) {
    const pane = this.pane('spectrum', false, this.frequencyOptions({
      yLabel: 'Level', overlay: (context, plot) => this.drawMeasurements(context, plot),
    }));
    const traces = [];
    channels.forEach((channel, i) => {
      traces.push({ ...channel, values: channel.values.subarray(0, length), colour: traceColour(i) });
      for (const [kind, colour] of [['max', variable('--warn')], ['min', variable('--good')]]) {
        const data = channel.hold?.[`${kind}Hold`]?.[channel.index];
        if (data) {
          traces.push({
            x: channel.x, name: `${channel.name}, ${kind} hold`, colour, width: 1,
            values: samples({ data, NaNIdx: channel.hold[`${kind}HoldNaNIdx`][channel.index] }),
          });
        }
      }
    });
    const aligned = align(traces);
    pane.setTraces(aligned.x, aligned.traces, this.unit);
  }

  updateWaterfall(channels, length, spectrum) {
    const increment = spectrum.timeIncrement || 1;
    const depth = Math.max(2, Math.min(2000, spectrum.numSpectrogramLines));
    const selected = channels[Math.min(channels.length - 1, this.client.value(estimator, 'spectrogramChannel', 0))];
    this.fullFrequency = [selected.x[0], selected.x[length - 1]];
    this.seconds = depth * increment;
    this.waterfall.add(selected.values, length, depth);
    if (this.waterfallAuto && (this.waterfallUpdates = (this.waterfallUpdates ?? 0) + 1) % 20 === 2) this.waterfall.autoRange();
    const pane = this.pane('waterfall', false, this.frequencyOptions({
      yLabel: 'Time ago', reversedY: true, fullX: () => this.fullFrequency, fullY: () => [0, this.seconds],
      background: (context, plot) => this.drawWaterfall(context, plot),
      onLevelWheel: (factor) => this.scaleWaterfall(factor),
    }));
    pane.view.y = [0, this.seconds];
    pane.setTraces(selected.x.subarray(0, length), [], 's');
  }

  scaleWaterfall(factor) {
    if (!this.waterfall.range) return;
    this.waterfallAuto = false;
    const [low, high] = this.waterfall.range;
    this.waterfall.setRange([high - (high - low) * factor, high]);
    this.panes.waterfall?.redraw();
    this.onChange();
  }

  drawWaterfall(context, plot) {
    const [low, high] = this.fullFrequency;
    const left = plot.canvasX(low);
    const right = plot.canvasX(high);
    const top = plot.canvasY(0);
    const bottom = plot.canvasY(this.seconds);
    context.imageSmoothingEnabled = false;
    context.drawImage(this.waterfall.canvas, left, top, right - left, bottom - top);
  }

  /** Channel band and offsets, peaks, harmonics and the mask on the trace. */
  drawMeasurements(context, plot) {
    const { measurements = {} } = this.message;
    if (measurements.channel) this.drawChannel(context, plot, measurements.channel);
    if (measurements.spectralMask) this.drawMask(context, plot, measurements.spectralMask);
    if (measurements.peaks) {
      const y = figures(measurements.peaks.peaks);
      figures(measurements.peaks.locations).forEach((x, i) => this.tag(context, plot, x, y[i], String(i + 1), variable('--accent')));
    }
    if (measurements.distortion) {
      const y = figures(measurements.distortion.amplitude);
      const names = this.client.value('distortion_measurements_filter', 'distortionType') === 'intermodulation'
        ? ['F1', 'F2', '2F1−F2', '2F2−F1'] : null;
      figures(measurements.distortion.frequency).forEach((x, i) => this.tag(context, plot, x, y[i], names?.[i] ?? `H${i + 1}`, variable('--good')));
    }
  }

  tag(context, plot, x, y, text, colour) {
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
      this.band(context, plot, start, stop, variable('--accent'), level(figure(channel.channelPower), this.unit));
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

  updatePhaseNoise(phaseNoise) {
    const signal = phaseNoise?.find(Boolean);
    if (!signal) {
      this.drop('phaseNoise');
      return;
    }
    const traces = signal.phaseNoise.map((data, c) => ({
      name: `channel ${c + 1}`, x: positions(signal.frequencyOffset[c], 0), values: samples({ data, NaNIdx: signal.phaseNoiseNaNIdx[c] }),
    })).filter((trace) => trace.x.length > 1);
    if (!traces.length) return;
    const pane = this.pane('phaseNoise', false, {
      xLabel: 'Offset from the carrier', xUnit: 'Hz', yLabel: 'Phase noise', logX: true,
      onCursor: (plot, x, y) => { this.cursor = x === null ? null : { x, y, plot }; this.onChange(); },
      overlay: (context, plot) => this.spots(signal).forEach(([offset, value]) => this.tag(context, plot, offset, value, level(value, 'dBc/Hz'), variable('--warn'))),
    });
    const aligned = align(traces);
    pane.setTraces(aligned.x, aligned.traces, 'dBc/Hz');
  }

  /** Spot offsets with the value of the first channel. */
  spots(signal) {
    const values = (signal.spotPhaseNoise?.[0] ?? []).map(figure);
    const offsets = signal.spotFrequencyOffset ?? this.client.value('phase_noise_filter', 'phaseNoiseFrequencyOffset', []);
    return offsets.map((offset, i) => [offset, values[i] ?? NaN]);
  }

  figures() {
    const { measurements = {}, spectrum, phaseNoise } = this.message;
    const out = [];
    const markers = this.panes.spectrum?.markerReadings() ?? [];
    if (markers.length) out.push(markerTable(markers, 'Hz', this.unit));
    if (measurements.peaks) out.push(peakTable(measurements.peaks, this.unit, 'Hz'));
    if (measurements.channel) out.push(channelTable(measurements.channel, this.unit.replace('/Hz', ''), this.client.value(channelStage, 'channelMeasurementsType')));
    if (measurements.distortion) out.push(distortionTable(measurements.distortion, this.unit, this.client.value('distortion_measurements_filter', 'distortionType')));
    if (measurements.spectralMask) out.push(maskTable(measurements.spectralMask));
    const signal = phaseNoise?.find(Boolean);
    if (signal) {
      const spots = this.spots(signal);
      out.push(phaseNoiseTable(spots.map(([offset]) => offset), spots.map(([, value]) => value)));
    }
    out.push(table('Spectrum', [
      ['RBW', engineering(spectrum.rbw, 'Hz')], ['VBW', engineering(spectrum.vbw, 'Hz')], ['ENBW', `${spectrum.enbw?.toFixed(4)} bins`],
      ['Sample rate', engineering(spectrum.sampleRate, 'Hz')], ['Points', String(spectrum.spectrumLength)],
    ]));
    return out;
  }

  status() {
    const { spectrum } = this.message;
    const [from, to] = this.main?.rangeX() ?? [NaN, NaN];
    const peak = figures(this.message.measurements?.peaks?.locations)[0];
    const parts = {
      Centre: engineering((from + to) / 2, 'Hz', 7), Span: engineering(to - from, 'Hz', 6), RBW: engineering(spectrum.rbw, 'Hz'),
      Averages: `${Math.min(spectrum.numUpdatesProcessed, spectrum.numSpectralAverages)} of ${spectrum.numSpectralAverages}`,
    };
    if (peak !== undefined) parts.Peak = `${engineering(peak, 'Hz', 7)} ${level(figures(this.message.measurements.peaks.peaks)[0], this.unit)}`;
    if (this.cursor) {
      if (this.cursor.plot === this.panes.waterfall) {
        const [low, high] = this.fullFrequency;
        const line = Math.floor(this.cursor.y / (this.seconds / this.waterfall.depth));
        parts.Cursor = `${engineering(this.cursor.x, 'Hz', 7)}, ${engineering(this.cursor.y, 's')} ago, ` +
          level(this.waterfall.level((this.cursor.x - low) / (high - low), line), this.unit);
      } else parts.Cursor = `${engineering(this.cursor.x, 'Hz', 7)} ${level(this.cursor.y, this.cursor.plot.unit)}`;
    }
    return parts;
  }

  complete() { return this.message.spectrum.numUpdatesProcessed >= this.message.spectrum.numSpectralAverages; }

  auto() {
    this.panes.spectrum?.autoY();
    this.panes.phaseNoise?.autoY();
    this.waterfallAuto = true;
    this.waterfall.autoRange();
    this.panes.waterfall?.redraw();
  }

  restyle() { for (const pane of Object.values(this.panes)) if (pane.chart) pane.build(); }

  destroy() { for (const name of Object.keys(this.panes)) this.drop(name); }
}
