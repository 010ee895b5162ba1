/** Saving what is shown: the picture and the trace. */

function download(name, blob) {
  const link = document.createElement('a');
  link.href = URL.createObjectURL(blob);
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10000);
}

/** All panes under each other on one canvas, with the status line below. */
export function picture(panes, background, text, colour) {
  const charts = panes.map((pane) => pane.chart?.ctx.canvas).filter(Boolean);
  const canvas = document.createElement('canvas');
  const ratio = window.devicePixelRatio || 1;
  canvas.width = Math.max(...charts.map((chart) => chart.width));
  canvas.height = charts.reduce((sum, chart) => sum + chart.height, 0) + 26 * ratio;
  const context = canvas.getContext('2d');
  context.fillStyle = background;
  context.fillRect(0, 0, canvas.width, canvas.height);
  let top = 0;
  for (const chart of charts) {
    context.drawImage(chart, 0, top);
    top += chart.height;
  }
  context.fillStyle = colour;
  context.font = `${12 * ratio}px system-ui, sans-serif`;
  context.fillText(text, 8 * ratio, top + 17 * ratio);
  return canvas;
}

export function savePicture(name, canvas) { canvas.toBlob((blob) => download(name, blob), 'image/png'); }

/** The traces of a pane as comma-separated values; a head tells what the columns are. */
export function traceText(pane, comments) {
  const lines = comments.map((comment) => `# ${comment}`);
  const unit = pane.unit ? ` [${pane.unit}]` : '';
  lines.push([`${pane.options.xLabel} [${pane.options.xUnit}]`, ...pane.traces.map((t) => `${t.name}${unit}`)].map((t) => `"${t}"`).join(','));
  for (let i = 0; i < pane.x.length; ++i) {
    lines.push([pane.x[i], ...pane.traces.map((t) => (Number.isNaN(t.values[i]) ? '' : t.values[i]))].join(','));
  }
  return `${lines.join('\n')}\n`;
}

/** The lines of a spectrogram, the newest first; each column is a frequency. */
export function linesText(waterfall, frequencies, unit, comments) {
  const [low, high] = [frequencies[0], frequencies[frequencies.length - 1]];
  const columns = Array.from({ length: waterfall.columns }, (_, i) => low + (high - low) * i / Math.max(1, waterfall.columns - 1));
  const lines = [...comments, `levels in ${unit}`].map((comment) => `# ${comment}`);
  lines.push(['"Time ago [s]"', ...columns].join(','));
  waterfall.rows.forEach((row, i) => {
    lines.push([i * waterfall.increment, ...Array.from(row, (v) => (Number.isNaN(v) ? '' : v))].join(','));
  });
  return `${lines.join('\n')}\n`;
}

export function saveText(name, text) { download(name, new Blob([text], { type: 'text/csv' })); }
