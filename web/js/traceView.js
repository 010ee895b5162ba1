/** Time, frame and response decks: traces in one pane, or magnitude and phase in two. */

import { engineering, figure, figures, level } from './format.js';
import { variable } from './palette.js';
import { Plot } from './plot.js';
import { tag } from './spectrumOverlay.js';
import { markerTable, peakTable, pulseTables, statisticsTable, triggerTable } from './tables.js';
import { align, positions, samples, traceName } from './trace.js';

const triggerStage = 'trigger_filter';
const responseStage = 'magnitude_phase_response_filter';

/** How each deck names its axis, and the member of a channel that holds its positions. */
const axes = {
  time: { key: 'time', offset: 'timeOffset', label: 'Time', unit: 's' },
  frame: { key: 'sample', offset: null, label: 'Sample', unit: '', counted: true },
  response: { key: 'sample', offset: null, label: 'Frequency', unit: 'Hz' },
};

export class TraceView {
  constructor(host, client, onChange) {
    this.host = host;
    this.client = client;
    this.onChange = onChange;
    this.axis = axes[client.deck] ?? axes.time;
    this.panes = [];
  }

  get main() { return this.panes[0]; }

  pane(index) {
    if (!this.panes[index]) {
      const host = document.createElement('div');
      host.className = index ? 'plot small' : 'plot';
      host.dataset.pane = index ? 'phase' : 'trace';
      this.host.append(host);
      this.panes[index] = new Plot(host, {
        xLabel: this.axis.label, xUnit: this.axis.unit, yLabel: index ? 'Phase' : this.client.deck === 'response' ? 'Magnitude' : 'Value', snap: this.client.deck === 'response',
        onCursor: (plot, x, y) => { this.cursor = x === null ? null : { x, y, unit: this.unit(index) }; this.onChange(); },
        onMarkers: () => this.onChange(),
        onView: (plot) => this.panes.forEach((other) => { if (other !== plot) other.setX(plot.view.x); }),
        overlay: (context, plot) => {
          if (index !== 0) return;
          this.drawTrigger(context, plot);
          this.drawPeaks(context, plot);
        },
      });
      if (index === 0) this.watchLevel(host);
    }
    return this.panes[index];
  }

  update(message) {
    this.message = message;
    this.onChange();
  }

  draw() {
    const { message } = this;
    const lists = [[], []];
    // A triggered picture stands still when its times count from the trigger point.
    const found = this.trigger?.triggerFound ? figure(this.trigger.position) : NaN;
    this.origin = Number.isFinite(found) ? found : 0;
    (message.signals ?? []).forEach((signal, s) => (signal?.channel ?? []).forEach((channel, c) => {
      const half = Math.floor(signal.numChannels / 2);
      lists[channel.subplotNum ? 1 : 0].push({
        name: traceName(message.signals, s, channel.subplotNum ? c - half : c, 'value'),
        x: this.axis.counted ? Float64Array.from(channel.data, (_, i) => i)
          : positions(channel[this.axis.key], (this.axis.offset ? channel[this.axis.offset] : 0) - this.origin),
        values: samples(channel),
      });
    }));
    lists.forEach((traces, index) => {
      if (!traces.length && !this.panes[index]) return;
      const aligned = align(traces);
      this.pane(index).setTraces(aligned.x, aligned.traces, this.unit(index));
    });
  }

  /** Unit of the values in a pane. */
  unit(index) {
    if (index) return '°';
    return this.client.value(responseStage, 'magnitudeDisplay') === 'Magnitude (dB)' ? 'dB' : '';
  }

  /** Peaks as places on the axis and values. Only the time deck's places are on the axis; the others are counted points. */
  get peaks() {
    const { peaks } = this.message.measurements ?? {};
    if (!peaks) return null;
    const values = figures(peaks.peaks);
    const x = this.main?.x ?? [];
    return figures(peaks.locations).map((place, i) => ({
      x: this.client.deck === 'time' ? place - this.origin : x[place] ?? NaN, y: values[i],
    }));
  }

  drawPeaks(context, plot) {
    this.peaks?.forEach(({ x, y }, i) => tag(context, plot, x, y, String(i + 1), variable('--accent')));
  }

  get trigger() { return this.message?.measurements?.trigger; }

  /** Levels that the trigger compares with, with the option that a drag changes. */
  levels() {
    if (!this.client.value(triggerStage, 'triggerEnabled', false)) return [];
    const type = this.client.value(triggerStage, 'type', 'edge');
    if (['edge', 'pulse-width', 'timeout'].includes(type)) {
      const automatic = this.client.value(triggerStage, 'autoLevel', true);
      const value = automatic ? figure(this.trigger?.level) : this.client.value(triggerStage, 'level', 0);
      return [{ option: 'level', value }];
    }
    return ['highLevel', 'lowLevel'].map((option) => ({ option, value: this.client.value(triggerStage, option, NaN) }));
  }

  drawTrigger(context, plot) {
    const ratio = window.devicePixelRatio || 1;
    const { bbox } = plot.chart;
    context.strokeStyle = variable('--warn');
    context.lineWidth = ratio;
    for (const { option, value } of this.levels()) {
      if (!Number.isFinite(value)) continue;
      const y = plot.canvasY(this.dragged?.option === option ? this.dragged.value : value);
      context.setLineDash([6 * ratio, 4 * ratio]);
      context.beginPath();
      context.moveTo(bbox.left, y);
      context.lineTo(bbox.left + bbox.width, y);
      context.stroke();
      context.setLineDash([]);
      plot.label(context, 'T', bbox.left + bbox.width, y - 3 * ratio, variable('--warn'));
    }
    if (this.trigger?.triggerFound) {
      const x = plot.canvasX(0);
      context.fillStyle = variable('--warn');
      context.beginPath();
      context.moveTo(x, bbox.top + 9 * ratio);
      context.lineTo(x - 5 * ratio, bbox.top);
      context.lineTo(x + 5 * ratio, bbox.top);
      context.fill();
    }
  }

  /** Dragging a level line tunes the trigger. */
  watchLevel(host) {
    const nearest = (event) => {
      const { chart } = this.panes[0];
      const y = event.clientY - chart.over.getBoundingClientRect().top;
      return this.levels().find(({ value }) => Math.abs(chart.valToPos(value, 'y') - y) < 6);
    };
    host.addEventListener('mousedown', (event) => {
      const line = this.panes[0]?.chart && nearest(event);
      if (!line) return;
      event.stopPropagation();
      const { chart } = this.panes[0];
      const top = chart.over.getBoundingClientRect().top;
      const move = (e) => {
        this.dragged = { option: line.option, value: chart.posToVal(e.clientY - top, 'y') };
        this.panes[0].redraw();
      };
      const up = () => {
        window.removeEventListener('mousemove', move);
        const { dragged } = this;
        this.dragged = null;
        if (dragged) this.tuneLevel(dragged);
      };
      window.addEventListener('mousemove', move);
      window.addEventListener('mouseup', up, { once: true });
    }, true);
  }

  tuneLevel({ option, value }) {
    const options = { [option]: value };
    if (option === 'level') options.autoLevel = false;
    this.client.tune(triggerStage, options).then(() => this.onChange(), (error) => this.onChange(error));
  }

  figures() {
    const { measurements = {} } = this.message;
    const out = [];
    const markers = this.main?.markerReadings() ?? [];
    if (markers.length) out.push(markerTable(markers, this.axis.unit, this.unit(0)));
    if (measurements.trigger) out.push(triggerTable(measurements.trigger));
    if (measurements.stats) out.push(statisticsTable(measurements.stats, ''));
    if (this.peaks) out.push(peakTable(this.peaks, this.unit(0), this.axis.unit));
    if (measurements.bilevel) out.push(...pulseTables(measurements.bilevel, ''));
    return out;
  }

  status() {
    const [from, to] = this.main?.rangeX() ?? [NaN, NaN];
    const parts = {};
    if (this.origin) parts['Trigger at'] = engineering(this.origin, this.axis.unit, 8);
    Object.assign(parts, { From: engineering(from, this.axis.unit, 6), Span: engineering(to - from, this.axis.unit, 6) });
    if (this.trigger) parts.Trigger = this.trigger.triggerFound ? 'triggered' : 'waiting';
    if (this.cursor) parts.Cursor = `${engineering(this.cursor.x, this.axis.unit, 7)}, ${level(this.cursor.y, this.cursor.unit)}`;
    return parts;
  }

  complete() { return !this.trigger || this.trigger.triggerFound; }

  auto() { this.panes.forEach((pane) => pane.autoY()); }

  restyle() {
    if (this.message) this.draw();
    this.panes.forEach((pane) => { if (pane.chart) pane.build(); });
  }

  destroy() {
    this.panes.forEach((pane) => {
      pane.destroy();
      pane.host.remove();
    });
    this.panes = [];
  }
}
