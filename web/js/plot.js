/** One pane: traces over a common axis, with the zoom and marker habits of a bench instrument. */

/* global uPlot */

import { axisScale, engineering, isDecibel } from './format.js';
import { theme, traceColour, variable } from './palette.js';
import { lowerBound, thinned } from './trace.js';

const wheelZoom = 1.2;
const keyLine = 15;

/** Ticks with one SI prefix for the whole axis, named on the axis label. */
function scaledTicks(scale, splits) {
  return splits.map((v) => (v === null ? '' : String(Number((v / scale).toPrecision(6)))));
}

/** 1, 2, ... 9 times each power of ten between two limits above 0. */
function decadeTicks(low, high) {
  const ticks = [];
  for (let decade = 10 ** Math.floor(Math.log10(low)); decade <= high; decade *= 10) {
    for (let i = 1; i < 10; ++i) {
      const tick = Number((i * decade).toPrecision(6));
      if (tick >= low && tick <= high) ticks.push(tick);
    }
  }
  return ticks;
}

export class Plot {
  /**
   * host     element that the pane fills
   * options  xLabel, xUnit, yLabel, logX (logarithmic x axis), reversedY, background(context, plot): drawn under the traces,
   *          overlay(context, plot): drawn over them, margin(context, plot): drawn above the picture, top: room for it,
   *          levelAt(x, y): what a marker reads in a pane without traces, onView(plot): the x range changed, onCursor(plot, x, y)
   */
  constructor(host, options) {
    this.host = host;
    this.options = options;
    this.x = new Float64Array(0);
    this.traces = [];
    this.unit = '';
    this.view = { x: null, y: null };
    this.markers = [];
    this.labels = [];
    this.chart = null;
    this.resizer = new ResizeObserver(() => this.resize());
    this.resizer.observe(host);
    host.addEventListener('wheel', (event) => this.wheel(event), { passive: false });
  }

  /** x rising; traces: [{name, values (NaN in gaps), colour?, dash?, held?: a hold trace}]. */
  setTraces(x, traces, unit) {
    const rebuild = !this.chart || traces.length !== this.traces.length || unit !== this.unit ||
      traces.some((trace, i) => trace.name !== this.traces[i].name);
    this.x = x;
    this.traces = traces;
    this.unit = unit;
    if (!this.view.y && traces.length) this.view.y = this.dataRangeY();
    if (rebuild) this.build(); else this.redraw();
  }

  /** The whole x range of the data. */
  fullX() {
    if (this.options.fullX) return this.options.fullX();
    const n = this.x.length;
    if (n === 0) return [0, 1];
    let first = this.x[0];
    if (this.options.logX && !(first > 0)) first = this.x.find((v) => v > 0) ?? 1;
    return n > 1 && this.x[n - 1] > first ? [first, this.x[n - 1]] : [first, first + 1];
  }

  rangeX() { return this.view.x ?? this.fullX(); }

  rangeY() { return this.view.y ?? this.dataRangeY() ?? [0, 1]; }

  /** A range that holds all finite values of the traces in view, with a margin; tens of decibels for levels. */
  dataRangeY() {
    if (this.options.fullY) return this.options.fullY();
    const [from, to] = this.rangeX();
    const first = lowerBound(this.x, from);
    const last = Math.min(this.x.length, lowerBound(this.x, to) + 1);
    let low = Infinity;
    let high = -Infinity;
    for (const { values } of this.traces) {
      for (let i = first; i < last; ++i) {
        const v = values[i];
        if (Number.isFinite(v)) {
          if (v < low) low = v;
          if (v > high) high = v;
        }
      }
    }
    if (low > high) return null;
    if (isDecibel(this.unit)) {
      const top = Math.ceil((high + 5) / 10) * 10;
      return [Math.max(Math.floor((low - 5) / 10) * 10, top - 200), top];
    }
    if (this.unit === '°' && high - low > 180) return [-180, 180];
    const margin = high > low ? 0.06 * (high - low) : Math.max(Math.abs(high) * 0.1, 1e-12);
    return [low - margin, high + margin];
  }

  autoY() {
    this.view.y = this.dataRangeY();
    this.redraw();
  }

  fullView() {
    this.view.x = null;
    this.view.y = this.dataRangeY() ?? this.view.y;
    this.redraw();
    this.options.onView?.(this);
  }

  setX(range) {
    this.view.x = range;
    this.redraw();
  }

  size() {
    return { width: Math.max(120, this.host.clientWidth), height: Math.max(90, this.host.clientHeight) };
  }

  resize() {
    if (this.chart) {
      this.chart.setSize(this.size());
      this.redraw();
    }
  }

  data() {
    const [from, to] = this.rangeX();
    return thinned(this.x, this.traces.map((t) => t.values), from, to, this.size().width);
  }

  redraw() {
    if (this.chart) this.chart.setData(this.data(), true);
  }

  build() {
    this.chart?.destroy();
    const text = variable('--faint');
    const grid = { stroke: variable('--grid'), width: 1 };
    const font = '11px system-ui, "DejaVu Sans", sans-serif';
    const axis = (label, unit, range, size) => ({
      stroke: text, grid, ticks: { show: false }, font, labelFont: font, size, labelSize: 18, gap: 4,
      label: () => {
        const [, prefix] = isDecibel(unit()) || unit() === '°' ? [1, ''] : axisScale(Math.max(...range().map(Math.abs)));
        return unit() || prefix ? `${label} / ${prefix}${unit()}` : label;
      },
      values: (chart, splits) => {
        const [scale] = isDecibel(unit()) || unit() === '°' ? [1] : axisScale(Math.max(...range().map(Math.abs)));
        return scaledTicks(scale, splits);
      },
    });
    const xAxis = axis(this.options.xLabel, () => this.options.xUnit, () => this.rangeX(), 24);
    if (this.options.logX) {
      xAxis.label = `${this.options.xLabel} / ${this.options.xUnit}`;
      xAxis.splits = (chart, axis_, low, high) => decadeTicks(low, high);
      xAxis.filter = (chart, splits) => splits;
      xAxis.values = (chart, splits) => {
        const decades = Math.log10(splits[splits.length - 1] / splits[0]);
        const labelled = decades > 4 ? [1] : decades > 2 ? [1, 3] : [1, 2, 5];
        return splits.map((v) => (labelled.includes(Number(v.toExponential()[0])) ? engineering(v, ' ').replace(/ /g, '') : ''));
      };
    }
    const yAxis = axis(this.options.yLabel, () => this.unit, () => this.rangeY(), 52);
    if (this.unit === '°') yAxis.incrs = [1, 2, 5, 10, 15, 30, 45, 90, 180];
    this.chart = new uPlot({
      ...this.size(),
      padding: [() => Math.max(this.options.top ?? 8, this.keyLines() * keyLine + 8), 12, 0, 0],
      legend: { show: false },
      cursor: {
        drag: { x: true, y: true, uni: 24, setScale: false },
        points: { size: 5 },
        x: true, y: true,
      },
      scales: {
        x: { time: false, distr: this.options.logX ? 3 : 1, range: () => this.rangeX() },
        y: { dir: this.options.reversedY ? -1 : 1, range: () => this.rangeY() },
      },
      axes: [xAxis, yAxis],
      series: [{}, ...this.traces.map((trace, i) => ({
        label: trace.name,
        stroke: trace.colour ?? traceColour(i),
        width: 1,  // a wider line of noise takes many times as long to fill without a graphics processor
        dash: trace.dash,
        points: { show: false },
      }))],
      hooks: {
        drawAxes: [(chart) => this.clipped(chart, this.options.background)],
        draw: [(chart) => {
          this.labels = [];
          this.clipped(chart, (context) => {
            this.options.overlay?.(context, this);
            this.drawMarkers(context);
          });
          chart.ctx.save();
          this.options.margin?.(chart.ctx, this);
          this.drawKey(chart.ctx);
          chart.ctx.restore();
        }],
        setSelect: [(chart) => this.boxZoom(chart)],
        setCursor: [(chart) => this.cursorMoved(chart)],
      },
    }, this.data(), this.host);
    this.chart.over.addEventListener('dblclick', () => this.fullView());
    this.watchClicks(this.chart.over);
  }

  clipped(chart, draw) {
    if (!draw) return;
    const { ctx: context, bbox } = chart;
    context.save();
    context.beginPath();
    context.rect(bbox.left, bbox.top, bbox.width, bbox.height);
    context.clip();
    draw(context, this);
    context.restore();
  }

  /** Position on the canvas of a value of the x or y axis. */
  canvasX(value) { return this.chart.valToPos(value, 'x', true); }

  canvasY(value) { return this.chart.valToPos(value, 'y', true); }

  /** A small text on the canvas, kept inside the pane and moved up until it covers no other of this picture. */
  label(context, text, x, y, colour) {
    const ratio = window.devicePixelRatio || 1;
    const { bbox } = this.chart;
    context.font = `${11 * ratio}px system-ui, "DejaVu Sans", sans-serif`;
    context.textAlign = 'left';
    context.textBaseline = 'alphabetic';
    const width = context.measureText(text).width;
    const left = Math.min(Math.max(x, bbox.left + 3 * ratio), bbox.left + bbox.width - width - 3 * ratio);
    const step = 14 * ratio;
    const lowest = bbox.top + bbox.height - 4 * ratio;
    let top = Math.min(Math.max(y, bbox.top + 12 * ratio), lowest);
    const covers = (other) => Math.abs(other.top - top) < step && other.left < left + width + 4 * ratio && left < other.right + 4 * ratio;
    const direction = top - 2 * step > bbox.top ? -1 : 1;
    for (let i = 0; i < 8 && this.labels.some(covers); ++i) top += direction * step;
    this.labels.push({ text, left, right: left + width, top });
    context.fillStyle = theme() === 'light' ? 'rgb(255 255 255 / 75%)' : 'rgb(20 23 28 / 75%)';
    context.fillRect(left - 2 * ratio, top - 10 * ratio, width + 4 * ratio, 13 * ratio);
    context.fillStyle = colour;
    context.fillText(text, left, top);
  }

  /** Places of the traces' names above the picture, in CSS pixels: [{trace, x, line}]; none for a trace alone. */
  keyPlaces() {
    if (this.traces.length < 2) return [];
    const context = this.keyContext ??= document.createElement('canvas').getContext('2d');
    context.font = '11px system-ui, "DejaVu Sans", sans-serif';
    const right = this.size().width - 80;
    let x = 0;
    let line = 0;
    return this.traces.map((trace) => {
      const width = context.measureText(trace.name).width + 30;
      if (x > 0 && x + width > right) {
        x = 0;
        ++line;
      }
      x += width;
      return { trace, x: x - width, line };
    });
  }

  keyLines() { return (this.keyPlaces().at(-1)?.line ?? -1) + 1; }

  /** Names of the traces behind a piece of their lines. */
  drawKey(context) {
    const ratio = window.devicePixelRatio || 1;
    const { bbox } = this.chart;
    const places = this.keyPlaces();
    const lines = this.keyLines();
    context.font = `${11 * ratio}px system-ui, "DejaVu Sans", sans-serif`;
    context.textBaseline = 'middle';
    context.textAlign = 'left';
    places.forEach(({ trace, x, line }, i) => {
      const left = bbox.left + x * ratio;
      const middle = bbox.top - ((lines - line) * keyLine - 5) * ratio;
      context.strokeStyle = trace.colour ?? traceColour(i);
      context.lineWidth = 2 * ratio;
      context.setLineDash((trace.dash ?? []).map((v) => v * ratio));
      context.beginPath();
      context.moveTo(left, middle);
      context.lineTo(left + 14 * ratio, middle);
      context.stroke();
      context.setLineDash([]);
      context.fillStyle = variable('--text');
      context.fillText(trace.name, left + 18 * ratio, middle);
    });
  }

  boxZoom(chart) {
    const { left, top, width, height } = chart.select;
    if (width < 4 && height < 4) return;
    const range = (axis, from, to, enough) => (enough
      ? [chart.posToVal(from, axis), chart.posToVal(to, axis)].sort((a, b) => a - b) : null);
    const x = range('x', left, left + width, width >= 4);
    const y = range('y', top, top + height, height >= 4 && height < chart.over.clientHeight - 1);
    if (x) this.view.x = x;
    if (y && !this.options.background) this.view.y = y;
    chart.setSelect({ left: 0, top: 0, width: 0, height: 0 }, false);
    this.redraw();
    if (x) this.options.onView?.(this);
  }

  wheel(event) {
    if (!this.chart) return;
    event.preventDefault();
    const bounds = this.chart.over.getBoundingClientRect();
    const factor = event.deltaY < 0 ? 1 / wheelZoom : wheelZoom;
    if (event.clientX < bounds.left) {
      if (this.options.onLevelWheel) { this.options.onLevelWheel(factor); return; }
      const centre = this.chart.posToVal(event.clientY - bounds.top, 'y');
      this.view.y = this.rangeY().map((v) => centre + (v - centre) * factor);
      this.redraw();
      return;
    }
    const [from, to] = this.rangeX();
    const [fullFrom, fullTo] = this.fullX();
    const centre = this.chart.posToVal(event.clientX - bounds.left, 'x');
    const zoom = (v) => (this.options.logX ? centre * (v / centre) ** factor : centre + (v - centre) * factor);
    const next = [Math.max(fullFrom, zoom(from)), Math.min(fullTo, zoom(to))];
    this.view.x = next[0] <= fullFrom && next[1] >= fullTo ? null : next;
    this.redraw();
    this.options.onView?.(this);
  }

  cursorMoved(chart) {
    const { left, top } = chart.cursor;
    if (left < 0 || left === undefined) {
      this.options.onCursor?.(this, null, null);
      return;
    }
    this.options.onCursor?.(this, chart.posToVal(left, 'x'), chart.posToVal(top, 'y'));
  }

  watchClicks(over) {
    let down = null;
    over.addEventListener('mousedown', (event) => { down = [event.clientX, event.clientY]; });
    over.addEventListener('mouseup', (event) => {
      if (!down || Math.hypot(event.clientX - down[0], event.clientY - down[1]) > 4) return;
      if (this.options.onClick?.(this, event)) return;
      const bounds = over.getBoundingClientRect();
      this.setMarker(this.chart.posToVal(event.clientX - bounds.left, 'x'), event.shiftKey ? 1 : 0,
        this.chart.posToVal(event.clientY - bounds.top, 'y'));
    });
  }

  /** Index of the point of a trace where a marker near x comes to rest: the largest value near by, or the nearest point. */
  markerPoint(values, x) {
    const [from, to] = this.rangeX();
    const reach = (width) => (this.options.logX ? [x * (from / to) ** width, x * (to / from) ** width]
      : [x - (to - from) * width, x + (to - from) * width]);
    const [low, high] = reach(1 / 60);
    let best = -1;
    for (let i = lowerBound(this.x, low); i < this.x.length && this.x[i] <= high; ++i) {
      if (Number.isFinite(values[i]) && (best < 0 || (this.options.snap ? values[i] > values[best]
        : Math.abs(this.x[i] - x) < Math.abs(this.x[best] - x)))) best = i;
    }
    return best < 0 ? Math.min(this.x.length - 1, lowerBound(this.x, x)) : best;
  }

  /** Puts marker 0 or 1 near x on the trace that is nearest to the level y there; in a pane without traces, at that place. */
  setMarker(x, which, y = NaN) {
    if (!this.x.length) return;
    if (this.traces.length) this.placeMarker(which, this.traceMarker(x, y));
    else if (this.options.levelAt) this.placeMarker(which, { x, height: y });
  }

  /** Puts marker 0 on the highest point in view of the traces, hold traces left out. */
  markPeak() {
    const [from, to] = this.rangeX();
    const first = lowerBound(this.x, from);
    let best = { y: -Infinity };
    this.traces.forEach(({ values, held }, trace) => {
      for (let i = first; !held && i < this.x.length && this.x[i] <= to; ++i) {
        if (Number.isFinite(values[i]) && values[i] > best.y) best = { x: this.x[i], y: values[i], trace };
      }
    });
    if (best.x !== undefined) this.placeMarker(0, { x: best.x, trace: best.trace });
  }

  traceMarker(x, y) {
    const nearest = this.traces.map((trace, index) => {
      const at = Math.min(this.x.length - 1, lowerBound(this.x, x));
      const peak = trace.values[this.markerPoint(trace.values, x)];
      return { trace: index, far: Math.min(Math.abs(trace.values[at] - y), Math.abs(peak - y)) };
    }).reduce((best, each) => (each.far < best.far ? each : best), { trace: 0, far: Infinity });
    return { x: this.x[this.markerPoint(this.traces[nearest.trace].values, x)], trace: nearest.trace };
  }

  placeMarker(which, place) {
    this.markers[which] = place;
    if (which === 1 && !this.markers[0]) this.markers[0] = place;
    this.redraw();
    this.options.onMarkers?.(this);
  }

  clearMarkers() {
    this.markers = [];
    this.redraw();
    this.options.onMarkers?.(this);
  }

  /** Markers with what they read (NaN outside the data), and in a pane without traces where they stand: [{x, y, height?}]. */
  markerReadings() {
    return this.markers.map(({ x, trace, height }) => {
      if (trace === undefined) return { x, y: this.options.levelAt(x, height), height };
      const values = this.traces[Math.min(trace, this.traces.length - 1)]?.values ?? [];
      return { x, y: x >= this.x[0] && x <= this.x[this.x.length - 1] ? values[lowerBound(this.x, x)] : NaN };
    });
  }

  drawMarkers(context) {
    const ratio = window.devicePixelRatio || 1;
    const colour = this.options.background ? 'white' : variable('--warn');
    this.markerReadings().forEach(({ x, y, height = y }, i) => {
      const px = this.canvasX(x);
      context.strokeStyle = colour;
      context.lineWidth = ratio;
      context.setLineDash([4 * ratio, 3 * ratio]);
      context.beginPath();
      context.moveTo(px, this.chart.bbox.top);
      context.lineTo(px, this.chart.bbox.top + this.chart.bbox.height);
      context.stroke();
      context.setLineDash([]);
      if (Number.isFinite(height)) {
        const py = this.canvasY(height);
        context.fillStyle = colour;
        context.beginPath();
        context.moveTo(px, py);
        context.lineTo(px - 5 * ratio, py - 9 * ratio);
        context.lineTo(px + 5 * ratio, py - 9 * ratio);
        context.fill();
        this.label(context, `M${i + 1}`, px + 7 * ratio, py - 4 * ratio, variable('--warn'));
      }
    });
  }

  destroy() {
    this.resizer.disconnect();
    this.chart?.destroy();
    this.chart = null;
  }
}
