/** The settings that an engineer turns often, as fields that tune the stages. */

/** Per deck: [title, [[label, stage, option], ...]]; an option of a stage that the client does not have is left out. */
const groups = {
  spectrum: [
    ['Frequency', [
      ['Span', 'spectrum_estimator_filter', 'span'], ['Centre', 'spectrum_estimator_filter', 'centerFrequency'],
      ['Start', 'spectrum_estimator_filter', 'startFrequency'], ['Stop', 'spectrum_estimator_filter', 'stopFrequency'],
      ['Span mode', 'spectrum_estimator_filter', 'frequencySpan'], ['Range', 'spectrum_estimator_filter', 'frequencyRange'],
    ]],
    ['Resolution', [
      ['Method', 'spectrum_estimator_filter', 'method'], ['RBW automatic', 'spectrum_estimator_filter', 'autoRBW'],
      ['RBW', 'spectrum_estimator_filter', 'rbw'], ['Window', 'spectrum_estimator_filter', 'window'],
      ['Overlap %', 'spectrum_estimator_filter', 'overlapPercent'],
    ]],
    ['Averaging', [
      ['Method', 'spectrum_estimator_filter', 'averagingMethod'], ['Forgetting', 'spectrum_estimator_filter', 'forgettingFactor'],
      ['Averages', 'spectrum_estimator_filter', 'spectralAverages'], ['Max hold', 'spectrum_estimator_filter', 'plotMaxHoldTrace'],
      ['Min hold', 'spectrum_estimator_filter', 'plotMinHoldTrace'],
    ]],
    ['Display', [
      ['Units', 'spectrum_estimator_filter', 'spectrumUnits'], ['Type', 'spectrum_estimator_filter', 'spectrumType'],
      ['Spectrum', 'spectrum_estimator_filter', 'showSpectrum'], ['Spectrogram', 'spectrum_estimator_filter', 'showSpectrogram'],
    ]],
    ['Measure', [
      ['Peaks', 'frequency_peak_finder_filter', 'peakFinderEnabled'], ['Peaks at most', 'frequency_peak_finder_filter', 'numPeaks'],
      ['Channel', 'channel_measurements_filter', 'channelMeasurementsEnabled'],
      ['Channel type', 'channel_measurements_filter', 'channelMeasurementsType'],
      ['Distortion', 'distortion_measurements_filter', 'distortionMeasurementsEnabled'],
      ['Distortion type', 'distortion_measurements_filter', 'distortionType'],
      ['Phase noise', 'phase_noise_filter', 'phaseNoiseEnabled'], ['Mask', 'spectral_mask_tester_filter', 'spectralMaskEnabled'],
    ]],
  ],
  time: [
    ['Trigger', [
      ['On', 'trigger_filter', 'triggerEnabled'], ['Mode', 'trigger_filter', 'mode'], ['Type', 'trigger_filter', 'type'],
      ['Polarity', 'trigger_filter', 'polarity'], ['Level automatic', 'trigger_filter', 'autoLevel'], ['Level', 'trigger_filter', 'level'],
      ['Hysteresis', 'trigger_filter', 'hysteresis'], ['Position %', 'trigger_filter', 'position'], ['Holdoff s', 'trigger_filter', 'holdoff'],
    ]],
    ['Measure', [
      ['Statistics', 'time_signal_statistics_filter', 'signalStatisticsEnabled'], ['Peaks', 'time_peak_finder_filter', 'peakFinderEnabled'],
      ['Pulses', 'bilevel_measurements_filter', 'bilevelMeasurementsEnabled'],
    ]],
  ],
  frame: [
    ['Measure', [
      ['Statistics', 'signal_statistics_filter', 'signalStatisticsEnabled'], ['Peaks', 'peak_finder_filter', 'peakFinderEnabled'],
    ]],
  ],
  response: [['Measure', [['Peaks', 'peak_finder_filter', 'peakFinderEnabled']]]],
};

/** Options that count only while another has a certain value: [that option, the value, what stands there otherwise, its value]. */
const bound = {
  span: ['frequencySpan', 'span-and-center-frequency', 'full', 'full'],
  centerFrequency: ['frequencySpan', 'span-and-center-frequency', 'full', 'full'],
  startFrequency: ['frequencySpan', 'start-and-stop-frequencies', 'full', 'full'],
  stopFrequency: ['frequencySpan', 'start-and-stop-frequencies', 'full', 'full'],
  rbw: ['autoRBW', false, 'automatic', true],
  level: ['autoLevel', false, 'automatic', true],
};

/** Start and stop after one of them is set; one that is passed over moves along, and the span stays. */
function edges(name, value, from, to) {
  const span = Math.abs(to - from);
  return name === 'startFrequency' ? { startFrequency: value, stopFrequency: value < to ? to : value + span }
    : { startFrequency: value > from ? from : value - span, stopFrequency: value };
}

/**
 * What a new value of an option asks for: the option itself and that it counts; of span and centre, of start and stop both,
 * the other as it is on the display now. An empty field gives up the option.
 */
function tuneFor(client, stage, name, value, display) {
  const [master, needed, , otherwise] = bound[name] ?? [];
  if (!master || !client.option(stage, master)) return { [name]: value };
  if (value === '') return { [master]: otherwise };
  const counts = client.value(stage, master) === needed;
  const isEdge = ['startFrequency', 'stopFrequency'].includes(name);
  if (!Number.isFinite(value) || (counts && !isEdge)) return { [name]: value, [master]: needed };
  const [from, to] = counts ? ['startFrequency', 'stopFrequency'].map((edge) => client.value(stage, edge)) : display?.frequencies() ?? [];
  if (master !== 'frequencySpan' || from === undefined || to === undefined) return { [name]: value, [master]: needed };
  const both = isEdge ? edges(name, value, from, to) : { span: to - from, centerFrequency: (from + to) / 2, [name]: value };
  return { ...both, [master]: needed };
}

const suffixes = { k: 1e3, M: 1e6, G: 1e9, m: 1e-3, u: 1e-6, 'µ': 1e-6, n: 1e-9 };

/** "12.5k" as a number; the text itself where it is none, so that the program can say what is wrong with it. */
export function parseNumber(text) {
  const match = /^\s*([-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?)\s*([kMGmuµn]?)\s*$/.exec(text);
  if (!match) return text;
  return Number(match[1]) * (suffixes[match[2]] ?? 1);
}

function field(option) {
  if (option.kind === 'logical') {
    const node = document.createElement('input');
    node.type = 'checkbox';
    return { node, read: () => node.checked };
  }
  if (option.words?.length) {
    const node = document.createElement('select');
    node.append(...option.words.map((word) => new Option(word, word)));
    return { node, read: () => node.value };
  }
  const node = document.createElement('input');
  node.inputMode = 'decimal';
  return { node, read: () => parseNumber(node.value) };
}

function show(node, option, client) {
  const [master, needed, otherwise, whenOtherwise] = bound[option.name] ?? [];
  const now = client.option(node.dataset.stage, master) ? client.value(node.dataset.stage, master) : needed;
  const counts = now === needed;
  node.placeholder = !counts && now === whenOtherwise ? otherwise : '';
  if (option.kind === 'logical') node.checked = Boolean(option.value);
  else node.value = counts ? option.value ?? '' : '';
}

/** Shows the values as they stand now; what is being typed or was rejected stays as it is. */
export function refreshControls(host, client) {
  for (const node of host.querySelectorAll('[data-option]')) {
    const option = client.option(node.dataset.stage, node.dataset.option);
    if (option && node !== document.activeElement && !node.classList.contains('rejected')) show(node, option, client);
  }
}

/**
 * Fills `host` with the settings of a client. onError(error or null) is told of each tune; display: {frequencies(): those
 * shown, and the colours of the spectrogram: names, map(), chooseMap(name), chooseRange([low, high] or null)}.
 */
export function buildControls(host, client, onError, display) {
  host.replaceChildren();
  for (const [title, rows] of groups[client.deck] ?? []) {
    const present = rows.filter(([, stage, name]) => client.option(stage, name));
    if (!present.length) continue;
    const heading = document.createElement('h2');
    heading.textContent = title;
    host.append(heading);
    for (const [text, stage, name] of present) {
      const { node, read } = field(client.option(stage, name));
      node.dataset.option = name;
      node.dataset.stage = stage;
      show(node, client.option(stage, name), client);
      node.addEventListener('change', () => {
        client.tune(stage, tuneFor(client, stage, name, read(), display)).then(() => {
          node.classList.remove('rejected');
          onError(null);
        }, (error) => {
          node.classList.add('rejected');
          onError(error);
        });
      });
      const label = document.createElement('label');
      label.append(text, node);
      host.append(label);
    }
  }
  if (client.deck === 'spectrum') addSpectrumExtras(host, client, onError, display);
}

function labelled(text, node, id) {
  node.id = id;
  const label = document.createElement('label');
  label.append(text, node);
  return label;
}

function addSpectrumExtras(host, client, onError, display) {
  const map = document.createElement('select');
  map.append(...display.names.map((name) => new Option(name, name)));
  map.value = display.map();
  map.addEventListener('change', () => display.chooseMap(map.value));
  const [low, high] = ['Level from', 'Level to'].map(() => document.createElement('input'));
  for (const node of [low, high]) {
    node.inputMode = 'decimal';
    node.placeholder = 'automatic';
    node.addEventListener('change', () => {
      const range = [low, high].map((field) => parseNumber(field.value));
      if (range.every(Number.isFinite) && range[1] > range[0]) display.chooseRange(range);
      else if (!low.value.trim() && !high.value.trim()) display.chooseRange(null);
    });
  }
  const reset = document.createElement('button');
  reset.id = 'hold-reset';
  reset.textContent = 'Reset hold traces';
  reset.addEventListener('click', () => resetHold(client).then(() => onError(null), onError));
  const heading = document.createElement('h2');
  heading.textContent = 'Colours of the spectrogram';
  host.append(reset, heading, labelled('Map', map, 'map'), labelled('Level from', low, 'level-low'), labelled('Level to', high, 'level-high'));
}

/** Hold traces start anew when they are switched off and on again, and a spectrum is made in between. */
export async function resetHold(client) {
  const stage = 'spectrum_estimator_filter';
  const held = ['plotMaxHoldTrace', 'plotMinHoldTrace'].filter((name) => client.value(stage, name, false));
  if (!held.length) return;
  const gone = client.until(({ spectrum }) => held.every((name) => !spectrum[name]));
  await client.tune(stage, Object.fromEntries(held.map((name) => [name, false])));
  await gone;
  await client.tune(stage, Object.fromEntries(held.map((name) => [name, true])));
}
