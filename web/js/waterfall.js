/** Spectrogram lines kept as levels and painted as an image: newest line first. */

import { lookupTable } from './palette.js';

const widest = 2048;

/** Largest of the values that fall into one column; NaN where there is none. */
function reduce(values, offset, length, row) {
  const columns = row.length;
  if (length <= columns) {
    for (let i = 0; i < columns; ++i) row[i] = i < length ? values[offset + i] : NaN;
    return;
  }
  for (let column = 0; column < columns; ++column) {
    const end = Math.floor(length * (column + 1) / columns);
    let best = NaN;
    for (let i = Math.floor(length * column / columns); i < end; ++i) {
      const v = values[offset + i];
      if (!(v <= best) && !Number.isNaN(v)) best = v;
    }
    row[column] = best;
  }
}

export class Waterfall {
  constructor() {
    this.canvas = document.createElement('canvas');
    this.context = this.canvas.getContext('2d');
    this.setMap('viridis');
    this.range = null;
    this.clear();
  }

  clear() {
    this.rows = [];
    this.origin = null;
    this.columns = 0;
    this.depth = 0;
  }

  setMap(name) {
    this.map = name;
    this.table = lookupTable(name);
    if (this.rows?.length) this.repaint();
  }

  /** Lower and upper level of the colours. */
  setRange(range) {
    this.range = range;
    this.repaint();
  }

  /** A range from the lines in hand: a little below the middle of the levels up to the strongest. */
  autoRange() {
    const levels = [];
    for (const row of this.rows.slice(0, 32)) for (let i = 0; i < row.length; i += 7) if (Number.isFinite(row[i])) levels.push(row[i]);
    if (!levels.length) return;
    levels.sort((a, b) => a - b);
    const low = levels[Math.floor(levels.length * 0.2)];
    const high = levels[levels.length - 1];
    this.setRange([low, high > low ? high : low + 1]);
  }

  /** The colour of a level, as a fraction of the range. */
  colour(fraction) {
    const packed = this.table[Math.round(255 * fraction)];
    return `rgb(${packed & 255} ${(packed >> 8) & 255} ${(packed >> 16) & 255})`;
  }

  /**
   * How many lines came since the last ones and never got here: of updates that were missed or held. Counted by the
   * time of the stream from the first line on, since an update comes some time after its lines.
   */
  missing(count, increment, time, anyLost) {
    if (!Number.isFinite(time)) return 0;
    if (this.origin === null || time < this.origin.time) this.origin = { time, lines: 0 };
    else this.origin.lines += count;
    const lost = Math.round((time - this.origin.time) / increment) - this.origin.lines;
    if (!anyLost || lost <= 0) return 0;
    this.origin.lines += lost;
    return Math.min(lost, this.depth);
  }

  /**
   * Adds the lines of one update: `values` holds lines of `length` values, the newest first. Keeps `depth` lines, which
   * are `increment` seconds apart; time: of the stream, in seconds; anyLost: updates were missed or held before this one.
   */
  add(values, length, depth, increment, time, anyLost) {
    const columns = Math.min(widest, length);
    if (columns !== this.columns || depth !== this.depth || increment !== this.increment) {
      this.clear();
      this.increment = increment;
      this.columns = columns;
      this.depth = depth;
      this.canvas.width = Math.max(1, columns);
      this.canvas.height = Math.max(1, depth);
    }
    const lines = Math.min(depth, Math.floor(values.length / length));
    const gap = Math.min(this.missing(lines, increment, time, anyLost), depth - lines);
    const count = lines + gap;
    const recycled = this.rows.splice(Math.max(0, depth - count));
    for (let line = count - 1; line >= 0; --line) {
      const row = recycled.pop() ?? new Float32Array(columns);
      if (line < lines) reduce(values, line * length, length, row); else row.fill(NaN);
      this.rows.unshift(row);
    }
    if (!this.range) this.autoRange();
    else {
      // "copy" and not the usual blending: a gap must not keep what stood there before.
      this.context.globalCompositeOperation = 'copy';
      this.context.drawImage(this.canvas, 0, count);
      this.context.globalCompositeOperation = 'source-over';
      this.paint(0, count);
    }
  }

  repaint() {
    this.context.clearRect(0, 0, this.canvas.width, this.canvas.height);
    this.paint(0, this.rows.length);
  }

  paint(from, to) {
    const last = Math.min(to, this.rows.length);
    if (last <= from || !this.range) return;
    const image = this.context.createImageData(this.columns, last - from);
    const pixels = new Uint32Array(image.data.buffer);
    const [low, high] = this.range;
    const scale = 255 / (high - low);
    for (let r = from; r < last; ++r) {
      const row = this.rows[r];
      const base = (r - from) * this.columns;
      for (let i = 0; i < this.columns; ++i) {
        const v = row[i];
        // A value that was not finite stays transparent: a gap.
        pixels[base + i] = Number.isNaN(v) ? 0 : this.table[Math.max(0, Math.min(255, Math.round((v - low) * scale)))];
      }
    }
    this.context.putImageData(image, 0, from);
  }

  /** Level at a fraction of the width and a line number. */
  level(fraction, line) {
    const row = this.rows[line];
    return row ? row[Math.max(0, Math.min(this.columns - 1, Math.floor(fraction * this.columns)))] : NaN;
  }
}
