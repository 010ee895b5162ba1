/** Tables of the figures that a message carries. */

import { engineering, figure, figures, isDecibel, level } from './format.js';

function element(name, text, className) {
  const node = document.createElement(name);
  if (text !== undefined) node.textContent = text;
  if (className) node.className = className;
  return node;
}

/** A titled table; rows are lists of cells, the first being the row's name. */
export function table(title, rows, head) {
  const section = document.createElement('div');
  section.append(element('h2', title));
  const node = document.createElement('table');
  node.dataset.table = title;
  if (head) {
    const line = document.createElement('tr');
    line.append(...head.map((text) => element('th', text)));
    const top = document.createElement('thead');
    top.append(line);
    node.append(top);
  }
  const body = document.createElement('tbody');
  for (const cells of rows) {
    const line = document.createElement('tr');
    cells.forEach((cell, i) => {
      const [text, className] = Array.isArray(cell) ? cell : [cell];
      line.append(element(i === 0 ? 'th' : 'td', text, className));
    });
    body.append(line);
  }
  node.append(body);
  section.append(node);
  return section;
}

/** peaks: [{x, y}], the strongest first. */
export function peakTable(peaks, unit, xUnit) {
  return table('Peaks', peaks.map(({ x, y }, i) => [String(i + 1), engineering(x, xUnit, 7), level(y, unit)]));
}

export function statisticsTable(stats, unit) {
  const value = (name) => level(figure(stats[name]), unit);
  return table('Statistics', [
    ['Maximum', value('yMax')], ['Minimum', value('yMin')], ['Peak to peak', value('peakToPeak')], ['Mean', value('mean')],
    ['Median', value('median')], ['RMS', value('rms')], ['Standard deviation', value('standardDeviation')],
  ]);
}

/** Tables of levels and period, and of what rising and falling edges, positive and negative pulses have in common. */
export function pulseTables(bilevel, unit) {
  const text = (name, u) => {
    const value = figure(bilevel[name]);
    return u === '%' && Number.isFinite(value) ? `${value.toFixed(2)} %` : engineering(value, u, 4);
  };
  const single = [['High level', 'highStateLevel', unit], ['Low level', 'lowStateLevel', unit], ['Amplitude', 'amplitude', unit],
    ['Period', 'period', 's'], ['Frequency', 'frequency', 'Hz']].map(([label, name, u]) => [label, text(name, u)]);
  const pairs = [['Edges', 'posEdges', 'negEdges', ''], ['Rise, fall time', 'riseTime', 'fallTime', 's'],
    ['Slew rate', 'posSlewRate', 'negSlewRate', '/s'], ...['Preshoot', 'Overshoot', 'Undershoot'].map((what) => [what, `pos${what}`, `neg${what}`, '%']),
    ['Settling time', 'posSettlingTime', 'negSettlingTime', 's'], ['Pulses', 'posPulses', 'negPulses', ''], ['Width', 'posWidth', 'negWidth', 's'],
    ['Duty cycle', 'posDutyCycle', 'negDutyCycle', '%']].map(([label, positive, negative, u]) => [label, text(positive, u), text(negative, u)]);
  return [table('Levels', single), table('Pulses', pairs, ['', 'Positive', 'Negative'])];
}

export function channelTable(channel, unit, type) {
  const rows = [['Channel power', level(figure(channel.channelPower), unit)]];
  if (type === 'acpr' || type === 1) {
    const upper = figures(channel.acprUpper);
    figures(channel.acprLower).forEach((lower, i) => {
      rows.push([`ACPR ${i + 1} lower / upper`, `${level(lower, 'dBc')} / ${level(upper[i], 'dBc')}`]);
    });
  } else {
    rows.push(['Occupied bandwidth', engineering(figure(channel.occupiedBW), 'Hz')],
      ['Frequency error', engineering(figure(channel.frequencyError), 'Hz')]);
  }
  return table('Channel', rows);
}

export function distortionTable(distortion, unit, type) {
  const frequency = figures(distortion.frequency);
  const rows = frequency.map((f, i) => [`${i + 1}`, engineering(f, 'Hz', 6), level(figures(distortion.amplitude)[i], unit)]);
  if (type === 'intermodulation' || type === 1) rows.push(['TOI', '', level(figure(distortion.TOI), unit)]);
  else {
    const percent = figure(distortion.THDPercent);
    rows.push(['THD', Number.isFinite(percent) ? `${percent.toPrecision(3)} %` : '–', level(figure(distortion.THD), 'dBc')],
      ['SNR', '', level(figure(distortion.SNR), 'dBc')], ['SINAD', '', level(figure(distortion.SINAD), 'dBc')],
      ['SFDR', '', level(figure(distortion.SFDR), 'dBc')]);
  }
  return table('Distortion', rows);
}

export function maskTable(mask) {
  const word = (text) => [text, text];
  return table('Mask', [
    ['Now', word(mask.isCurrentlyPassing ? 'passing' : 'failing')], ['Upper', word(mask.upperMaskStatus)],
    ['Lower', word(mask.lowerMaskStatus)], ['Passed', `${mask.numPassedTests} of ${mask.numTotalTests}`],
    ['Success', `${Number(figure(mask.successRate).toFixed(2))} %`],
    ['Failing channels', (mask.failingChannels ?? []).join(', ') || 'none'],
  ]);
}

export function phaseNoiseTable(spots, values) {
  return table('Phase noise', spots.map((offset, i) => [engineering(offset, 'Hz'), level(values[i], 'dBc/Hz')]));
}

export function triggerTable(trigger) {
  const rows = [['State', trigger.triggerFound ? ['triggered', 'passing'] : 'waiting']];
  if (trigger.triggerFound) {
    rows.push(['Trigger point', engineering(figure(trigger.position), 's', 8)], ['Window start', engineering(figure(trigger.startTime), 's', 8)],
      ['Window end', engineering(figure(trigger.endTime), 's', 8)], ['Level', engineering(figure(trigger.level))]);
  }
  return table('Trigger', rows);
}

/** Readings of up to two markers and their difference; in a spectrogram their heights are seconds ago. */
export function markerTable(readings, xUnit, unit, title = 'Markers') {
  const row = (name, { x, y, height }, levelUnit) => [name, engineering(x, xUnit, 7),
    ...(height === undefined ? [] : [engineering(height, 's', 4)]), level(y, levelUnit)];
  const rows = readings.map((reading, i) => row(`M${i + 1}`, reading, unit));
  if (readings.length === 2) {
    const [first, second] = readings;
    const dx = second.x - first.x;
    const height = first.height === undefined ? undefined : second.height - first.height;
    rows.push(row('Δ', { x: dx, y: second.y - first.y, height }, isDecibel(unit) ? 'dB' : unit));
    if (xUnit === 's' && dx !== 0) rows.push(['1/Δ', engineering(1 / Math.abs(dx), 'Hz', 7), '']);
  }
  return table(title, rows);
}
