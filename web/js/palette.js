/** Colours: one a trace, and perceptual maps for levels. */

/* global d3 */

export const maps = {
  viridis: d3.interpolateViridis, inferno: d3.interpolateInferno, magma: d3.interpolateMagma, plasma: d3.interpolatePlasma,
  cividis: d3.interpolateCividis, turbo: d3.interpolateTurbo, greys: (t) => d3.interpolateGreys(1 - t),
};

const traceColours = {
  dark: ['#4cc2ff', '#ffc857', '#7ee08a', '#ff8fa3', '#c49bff', '#5ee0d0', '#ffa65c', '#b7c4d6'],
  light: ['#0b6bcb', '#b26a00', '#1c8a3c', '#c2325a', '#6b3fc4', '#008278', '#b4491a', '#4b5a70'],
};

export function theme() { return document.documentElement.dataset.theme === 'light' ? 'light' : 'dark'; }

export function traceColour(index) {
  const colours = traceColours[theme()];
  return colours[index % colours.length];
}

/** A style variable of the page, such as "--grid". */
export function variable(name) { return getComputedStyle(document.documentElement).getPropertyValue(name).trim(); }

/** 256 colours of a map as packed pixels for an image. */
export function lookupTable(name) {
  const map = maps[name] ?? maps.viridis;
  const table = new Uint32Array(256);
  for (let i = 0; i < 256; ++i) {
    const { r, g, b } = d3.rgb(map(i / 255));
    table[i] = (255 << 24) | (b << 16) | (g << 8) | r;
  }
  return table;
}
