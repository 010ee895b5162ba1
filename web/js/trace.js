/** Traces: gaps for what was not finite, and thinning that keeps every extreme. */

/** The samples of a channel as floats, NaN where the message says that the value was not finite. */
export function samples(channel) {
  const values = Float64Array.from(channel.data ?? []);
  for (const index of channel.NaNIdx ?? []) values[index] = NaN;
  return values;
}

/** Samples `from` to `to` as the plot wants them: null makes a gap. */
function plain(values, from, to) {
  const out = new Array(to - from);
  for (let i = from; i < to; ++i) out[i - from] = Number.isNaN(values[i]) ? null : values[i];
  return out;
}

/** First index in rising `x` with x[i] >= value. */
export function lowerBound(x, value) {
  let low = 0;
  let high = x.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (x[middle] < value) low = middle + 1; else high = middle;
  }
  return low;
}

/**
 * What to draw of traces over a common rising x between `from` and `to`, at most a few points a pixel: in each bucket the
 * minimum and the maximum of every trace, in the order in which they came, so that a burst of one sample stays visible.
 * Returns [x, y...] with null in gaps.
 */
export function thinned(x, traces, from, to, pixels) {
  const first = Math.max(0, lowerBound(x, from) - 1);
  const last = Math.min(x.length, lowerBound(x, to) + 2);
  const count = Math.max(0, last - first);
  const buckets = Math.max(1, Math.floor(pixels));
  if (count <= 4 * buckets) return [Array.from(x.slice(first, last)), ...traces.map((y) => plain(y, first, last))];
  const outX = new Array(2 * buckets);
  const outY = traces.map(() => new Array(2 * buckets));
  for (let b = 0; b < buckets; ++b) {
    const begin = first + Math.floor(count * b / buckets);
    const end = first + Math.floor(count * (b + 1) / buckets);
    outX[2 * b] = x[begin];
    outX[2 * b + 1] = x[end - 1];
    traces.forEach((y, t) => {
      let low = -1;
      let high = -1;
      for (let i = begin; i < end; ++i) {
        if (Number.isNaN(y[i])) continue;
        if (low < 0 || y[i] < y[low]) low = i;
        if (high < 0 || y[i] > y[high]) high = i;
      }
      outY[t][2 * b] = low < 0 ? null : y[Math.min(low, high)];
      outY[t][2 * b + 1] = low < 0 ? null : y[Math.max(low, high)];
    });
  }
  return [outX, ...outY];
}

function sameGrid(a, b) {
  return a.length === b.length && (a.length === 0 || (a[0] === b[0] && a[a.length - 1] === b[b.length - 1]));
}

/** Values of a trace at the positions of another grid, by straight lines between its points; NaN outside its own. */
function onGrid(x, values, grid) {
  const out = new Float64Array(grid.length).fill(NaN);
  for (let i = 0; i < grid.length; ++i) {
    const k = lowerBound(x, grid[i]);
    if (k < x.length && x[k] === grid[i]) out[i] = values[k];
    else if (k > 0 && k < x.length) {
      out[i] = values[k - 1] + (values[k] - values[k - 1]) * (grid[i] - x[k - 1]) / (x[k] - x[k - 1]);
    }
  }
  return out;
}

/** Brings traces [{x, values, ...}] onto one grid: theirs if they share it, else the union of all their positions. */
export function align(traces) {
  if (!traces.length) return { x: new Float64Array(0), traces };
  const first = traces[0].x;
  if (traces.every((trace) => sameGrid(trace.x, first))) return { x: first, traces };
  const all = new Float64Array(traces.reduce((n, trace) => n + trace.x.length, 0));
  let at = 0;
  for (const trace of traces) {
    all.set(trace.x, at);
    at += trace.x.length;
  }
  all.sort();
  const x = all.filter((v, i) => i === 0 || v !== all[i - 1]);
  return { x, traces: traces.map((trace) => ({ ...trace, values: onGrid(trace.x, trace.values, x) })) };
}

/** The common x of a channel: its positions plus its offset. */
export function positions(values, offset) {
  const x = Float64Array.from(values ?? []);
  if (offset) for (let i = 0; i < x.length; ++i) x[i] += offset;
  return x;
}

/** What channel c of signal s is called: no more than tells it from the others; `alone` if there are no others. */
export function traceName(signals, s, c, alone) {
  const several = signals.filter(Boolean).length > 1;
  if (several) return signals[s].channel.length > 1 ? `signal ${s + 1}, channel ${c + 1}` : `signal ${s + 1}`;
  return signals[s].channel.length > 1 ? `channel ${c + 1}` : alone;
}
