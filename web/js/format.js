/** Numbers as an engineer reads them. */

const prefixes = [[1e12, 'T'], [1e9, 'G'], [1e6, 'M'], [1e3, 'k'], [1, ''], [1e-3, 'm'], [1e-6, 'µ'], [1e-9, 'n'], [1e-12, 'p']];

/**
 * `value` with an SI prefix and `digits` significant digits: 12500, 'Hz' gives "12.5 kHz"; a number without a unit has no
 * prefix either; "–" for no number.
 */
export function engineering(value, unit = '', digits = 5) {
  if (value === null || value === undefined || Number.isNaN(value)) return '–';
  if (!Number.isFinite(value)) return value > 0 ? '∞' : '−∞';
  if (unit === '') return String(Number(value.toPrecision(digits)));
  if (value === 0) return `0 ${unit}`;
  const magnitude = Math.abs(value);
  const [scale, prefix] = prefixes.find(([s]) => magnitude >= s * 0.9999995) ?? prefixes[prefixes.length - 1];
  const text = String(Number((value / scale).toPrecision(digits)));
  return `${text} ${prefix}${unit}`;
}

/** The scale that suits all ticks of an axis: [factor, prefix]. */
export function axisScale(largest) {
  if (!(largest > 0)) return [1, ''];
  return prefixes.find(([s]) => largest >= s) ?? prefixes[prefixes.length - 1];
}

/** A level in decibels or linear units with its unit. */
export function level(value, unit) {
  if (value === null || value === undefined || Number.isNaN(value)) return '–';
  if (isDecibel(unit)) return Number.isFinite(value) ? `${value.toFixed(2)} ${unit}` : `${value > 0 ? '∞' : '−∞'} ${unit}`;
  if (unit === '°') return `${value.toFixed(2)}°`;
  return engineering(value, unit, 5);
}

export function isDecibel(unit) { return /^dB/.test(unit); }

/** A figure that arrives as text: "nan", "NaN", "inf" and "-inf" in any spelling, else a number. */
export function figure(text) {
  if (typeof text === 'number') return text;
  const word = String(text ?? '').trim().toLowerCase();
  if (word.endsWith('nan') || word === '') return NaN;
  if (word.endsWith('inf')) return word.startsWith('-') ? -Infinity : Infinity;
  return Number(word);
}

/** The text of an array of numbers, in which nan and inf stand bare. */
export function figures(text) {
  if (Array.isArray(text)) return text.map(figure);
  const inside = String(text ?? '').trim().replace(/^\[|\]$/g, '');
  return inside === '' ? [] : inside.split(',').map(figure);
}

/** The pair of limits of a signal's data, as "[lower,upper]"-style text or as a single number. */
export function limits(signal) {
  const low = figures(signal.dataMin).filter(Number.isFinite);
  const high = figures(signal.dataMax).filter(Number.isFinite);
  return low.length && high.length ? [Math.min(...low), Math.max(...high)] : null;
}
