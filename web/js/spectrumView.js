/** Spectrum deck: traces, hold traces, measurements drawn on them, spectrogram, phase noise. */

import { engineering, figure, figures, level } from './format.js';
import { traceColour, variable } from './palette.js';
import { Plot } from './plot.js';
import { channelStage, SpectrumOverlay, tag } from './spectrumOverlay.js';
import { channelTable, distortionTable, markerTable, maskTable, peakTable, phaseNoiseTable, table } from './tables.js';
import { align, positions, samples, traceName } from './trace.js';
import { Waterfall } from './waterfall.js';

const estimator = 'spectrum_estimator_filter';

/** Unit words of the estimator as they are written. */
const unitSymbols = {
  dbm: 'dBm', dbw: 'dBW', dbfs: 'dBFS', dbv: 'dBV', dbuv: 'dBµV', watts: 'W', vrms: 'Vrms', auto: 'W', none: 'W',
};

export class SpectrumView {
  constructor(host, client, onChange) {
    this.host = host;
    this.client = client;
    this.onChange = onChange;
    this.overlay = new SpectrumOverlay(client, () => this.unit);
    this.waterfall = new Waterfall();
    this.waterfallAuto = true;
    this.panes = {};
  }

  get unit() {
    const word = this.client.value(estimator, 'spectrumUnits', 'dbm');
    const [base] = word.split('/');
    const unit = unitSymbols[base] ?? base;
    // The type alone makes a density of it: the words with "/hz" give the same numbers as those without.
    if (this.client.value(estimator, 'spectrumType', 'power') !== 'power-density') return unit;
    return unit === 'Vrms' ? 'Vrms/√Hz' : `${unit}/Hz`;
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
      xLabel: 'Frequency', xUnit: 'Hz', snap: true, fullX: () => this.frequencies,
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

  /** Takes a message in: every one counts for the spectrogram, only the newest is drawn. anyLost: some before it never came. */
  update(message, anyLost = false) {
    this.message = message;
    this.channels = null;
    if (message.spectrum.showSpectrogram) this.takeLines(message, anyLost);
    this.onChange();
  }

  /** The channels of all signals of the newest message. */
  get channelList() {
    const { signals = [] } = this.message;
    this.channels ??= signals.flatMap((signal, s) => (signal?.channel ?? []).map((channel, c) => ({
      name: traceName(signals, s, c, 'spectrum'),
      x: positions(channel.frequency, channel.frequencyOffset), source: channel, hold: signal.traceHold, index: c,
    })));
    return this.channels;
  }

  /** First and last frequency of the data, or of the last that there were; undefined before the first. */
  get band() {
    const x = this.message && this.channelList[0]?.x;
    if (x?.length) this.lastBand = [x[0], x[x.length - 1]];
    return this.lastBand;
  }

  /** The span that is asked for, as far as there is data: the program may work out more than that. */
  get frequencies() {
    const all = this.band ?? [0, 1];
    const value = (name) => Number(this.client.value(estimator, name, NaN));
    const mode = this.client.value(estimator, 'frequencySpan', 'full');
    const asked = mode === 'span-and-center-frequency'
      ? [value('centerFrequency') - value('span') / 2, value('centerFrequency') + value('span') / 2]
      : mode === 'start-and-stop-frequencies' ? [value('startFrequency'), value('stopFrequency')] : all;
    const shown = [Math.max(all[0], asked[0]), Math.min(all[1], asked[1])];
    return shown[1] > shown[0] ? shown : all;
  }

  /** A span that was newly set takes the place of a zoom. */
  followSpan() {
    const span = this.frequencies.join();
    if (span === this.lastSpan) return;
    this.lastSpan = span;
    for (const pane of [this.panes.spectrum, this.panes.waterfall]) if (pane) pane.view.x = null;
  }

  draw() {
    const { spectrum } = this.message;
    const channels = this.channelList;
    this.followSpan();
    // What the message says changes only when the estimator is set up anew.
    if (!this.client.value(estimator, 'showSpectrum', spectrum.showSpectrum)) this.drop('spectrum'); else if (channels.length) this.updateTraces(channels);
    if (!spectrum.showSpectrogram) this.drop('waterfall'); else if (this.fullFrequency) this.updateWaterfall();
    this.updatePhaseNoise();
  }

  updateTraces(channels) {
    const pane = this.pane('spectrum', false, this.frequencyOptions({
      yLabel: 'Level', overlay: (context, plot) => this.overlay.draw(context, plot, this.message.measurements ?? {}),
    }));
    const traces = [];
    channels.forEach((channel, i) => {
      traces.push({ ...channel, values: samples(channel.source).subarray(0, channel.x.length), colour: traceColour(i) });
      for (const [kind, only, dash] of [['max', '--warn', [6, 3]], ['min', '--good', [2, 3]]]) {
        const data = channel.hold?.[`${kind}Hold`]?.[channel.index];
        if (data) {
          traces.push({
            x: channel.x, name: channels.length > 1 ? `${kind} ${channel.name}` : `${kind} hold`,
            held: true, ...(channels.length > 1 ? { colour: traceColour(i), dash } : { colour: variable(only) }),
            values: samples({ data, NaNIdx: channel.hold[`${kind}HoldNaNIdx`][channel.index] }),
          });
        }
      }
    });
    const aligned = align(traces);
    pane.setTraces(aligned.x, aligned.traces, this.unit);
  }

  /** Adds the message's lines of the chosen channel to the spectrogram. */
  takeLines(message, anyLost) {
    const channels = this.channelList;
    if (!channels.length) return;
    const { spectrum } = message;
    const { x, source } = channels[Math.min(channels.length - 1, this.client.value(estimator, 'spectrogramChannel', 0))];
    if (!x.length) return;
    const increment = spectrum.timeIncrement || 1;
    const depth = Math.max(2, Math.min(2000, spectrum.numSpectrogramLines));
    if (this.lineUnit !== this.unit || this.fullFrequency?.[0] !== x[0] || this.fullFrequency[1] !== x[x.length - 1]) this.waterfall.clear();
    if (this.waterfallAuto && this.lineUnit !== this.unit) this.waterfall.range = null;
    this.lineUnit = this.unit;
    this.lineFrequencies = x;
    this.fullFrequency = [x[0], x[x.length - 1]];
    this.waterfall.add(samples(source), x.length, depth, increment, message.simulation?.simTime, anyLost);
    this.seconds = depth * increment;
    if (this.waterfallAuto && (this.waterfallUpdates = (this.waterfallUpdates ?? 0) + 1) % 20 === 2) this.waterfall.autoRange();
  }

  updateWaterfall() {
    const pane = this.pane('waterfall', false, this.frequencyOptions({
      yLabel: 'Time ago', reversedY: true, fullY: () => [0, this.seconds],
      background: (context, plot) => this.drawWaterfall(context, plot),
      onLevelWheel: (factor) => this.scaleWaterfall(factor), top: 26, levelAt: (frequency, ago) => this.lineLevel(frequency, ago),
      margin: (context, plot) => this.drawScale(context, plot),
    }));
    pane.view.y = [0, this.seconds];
    pane.setTraces(this.lineFrequencies, [], 's');
  }

  scaleWaterfall(factor) {
    if (!this.waterfall.range) return;
    const [low, high] = this.waterfall.range;
    this.setWaterfallRange([high - (high - low) * factor, high]);
  }

  /** Fixes the levels of the colours; null lets them follow the lines again. */
  setWaterfallRange(range) {
    this.waterfallAuto = !range;
    if (range) this.waterfall.setRange(range); else this.waterfall.autoRange();
    this.panes.waterfall?.redraw();
    this.onChange();
  }

  /** The colours with their levels, above the picture. */
  drawScale(context, plot) {
    if (!this.waterfall.range) return;
    const ratio = window.devicePixelRatio || 1;
    const { bbox } = plot.chart;
    const width = Math.min(160 * ratio, bbox.width / 3);
    const [low, high] = this.waterfall.range.map((v) => level(v, this.unit));
    context.font = `${11 * ratio}px system-ui, "DejaVu Sans", sans-serif`;
    context.textBaseline = 'middle';
    context.fillStyle = variable('--text');
    const right = bbox.left + bbox.width - context.measureText(high).width;
    const middle = bbox.top - 11 * ratio;
    context.textAlign = 'left';
    context.fillText(high, right, middle);
    const left = right - 6 * ratio - width;
    for (let i = 0; i < width; ++i) {
      context.fillStyle = this.waterfall.colour(i / (width - 1));
      context.fillRect(left + i, middle - 5 * ratio, 1, 10 * ratio);
    }
    context.fillStyle = variable('--text');
    context.textAlign = 'right';
    context.fillText(low, left - 6 * ratio, middle);
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

  /** Level of the spectrogram at a frequency some seconds ago; NaN outside its frequencies. */
  lineLevel(frequency, ago) {
    const [low, high] = this.fullFrequency;
    if (!(frequency >= low && frequency <= high)) return NaN;
    return this.waterfall.level((frequency - low) / (high - low), Math.floor(ago / (this.seconds / this.waterfall.depth)));
  }

  get phaseNoiseSignal() { return this.message.phaseNoise?.find(Boolean); }

  updatePhaseNoise() {
    const signal = this.phaseNoiseSignal;
    if (!signal) {
      this.drop('phaseNoise');
      return;
    }
    const traces = signal.phaseNoise.map((data, c) => ({
      name: `channel ${c + 1}`, x: positions(signal.frequencyOffset[c], 0), values: samples({ data, NaNIdx: signal.phaseNoiseNaNIdx[c] }),
    })).filter((trace) => trace.x.length > 1);
    if (!traces.length) return;
    const pane = this.pane('phaseNoise', false, {
      xLabel: 'Offset from the carrier', xUnit: 'Hz', yLabel: 'Phase noise', logX: true, onMarkers: () => this.onChange(),
      onCursor: (plot, x, y) => { this.cursor = x === null ? null : { x, y, plot }; this.onChange(); },
      overlay: (context, plot) => this.spots().forEach(([offset, value]) => tag(context, plot, offset, value, level(value, 'dBc/Hz'), variable('--warn'))),
    });
    const aligned = align(traces);
    pane.setTraces(aligned.x, aligned.traces, 'dBc/Hz');
  }

  /** Spot offsets with the value of the first channel. */
  spots() {
    const signal = this.phaseNoiseSignal;
    if (!signal) return [];
    const values = (signal.spotPhaseNoise?.[0] ?? []).map(figure);
    const offsets = signal.spotFrequencyOffset ?? this.client.value('phase_noise_filter', 'phaseNoiseFrequencyOffset', []);
    return offsets.map((offset, i) => [offset, values[i] ?? NaN]);
  }

  figures() {
    const { measurements = {}, spectrum } = this.message;
    const out = [];
    const markers = this.panes.spectrum?.markerReadings() ?? [];
    if (markers.length) out.push(markerTable(markers, 'Hz', this.unit));
    const lineMarkers = this.panes.waterfall?.markerReadings() ?? [];
    if (lineMarkers.length) out.push(markerTable(lineMarkers, 'Hz', this.unit, 'Markers in the spectrogram'));
    const noiseMarkers = this.panes.phaseNoise?.markerReadings() ?? [];
    if (noiseMarkers.length) out.push(markerTable(noiseMarkers, 'Hz', 'dBc/Hz', 'Markers in the phase noise'));
    if (measurements.peaks) {
      const y = figures(measurements.peaks.peaks);
      out.push(peakTable(figures(measurements.peaks.locations).map((x, i) => ({ x, y: y[i] })), this.unit, 'Hz'));
    }
    if (measurements.channel) out.push(channelTable(measurements.channel, this.unit.replace('/Hz', ''), this.client.value(channelStage, 'channelMeasurementsType')));
    if (measurements.distortion) out.push(distortionTable(measurements.distortion, this.unit, this.client.value('distortion_measurements_filter', 'distortionType')));
    if (measurements.spectralMask) out.push(maskTable(measurements.spectralMask));
    const spots = this.spots();
    if (spots.length) {
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
        parts.Cursor = `${engineering(this.cursor.x, 'Hz', 7)}, ${engineering(this.cursor.y, 's')} ago, ` +
          level(this.lineLevel(this.cursor.x, this.cursor.y), this.unit);
      } else parts.Cursor = `${engineering(this.cursor.x, 'Hz', 7)} ${level(this.cursor.y, this.cursor.plot.unit)}`;
    }
    return parts;
  }

  complete() { return this.message.spectrum.numUpdatesProcessed >= this.message.spectrum.numSpectralAverages; }

  auto() {
    this.panes.spectrum?.autoY();
    this.panes.phaseNoise?.autoY();
    this.setWaterfallRange(null);
  }

  restyle() {
    if (this.message) this.draw();
    for (const pane of Object.values(this.panes)) if (pane.chart) pane.build();
  }

  destroy() { for (const name of Object.keys(this.panes)) this.drop(name); }
}
