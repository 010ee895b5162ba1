/** The page: decks, buttons, keys, status line; hands updates to the view in front. */

import { Client } from './client.js';
import { Connection } from './connection.js';
import { buildControls, refreshControls, resetHold } from './controls.js';
import { linesText, picture, savePicture, saveText, traceText } from './export.js';
import { maps, theme, variable } from './palette.js';
import { SpectrumView } from './spectrumView.js';
import { TraceView } from './traceView.js';

const byId = (id) => document.getElementById(id);
const url = new URL('live', location.href);
url.protocol = url.protocol === 'https:' ? 'wss:' : 'ws:';

const state = {
  clients: new Map(), current: null, view: null, running: true, wanted: null, latest: new Map(), missed: 0, updates: 0, interval: 50,
  connected: false, ended: false, dirty: false, skipped: false, pending: null, fresh: true,
  /** Milliseconds that each step of the last updates took, and from their sending to the end of the drawing. */
  timings: [],
};
const keptTimings = 1000;

/** Everything that a test or a curious engineer may look at from the console. */
window.wavedeck = { state, resetHold };

function showError(error) {
  const box = byId('message');
  box.hidden = !error;
  box.textContent = error ? error.message : '';
  clearTimeout(showError.timer);
  if (error) showError.timer = setTimeout(() => { box.hidden = true; }, 8000);
}

function select(name) {
  state.current = name;
  state.view?.destroy();
  byId('plots').replaceChildren();
  const client = state.clients.get(name);
  const View = client.deck === 'spectrum' ? SpectrumView : TraceView;
  state.view = new View(byId('plots'), client, (error) => {
    if (error) showError(error);
    state.dirty = true;
  });
  const display = {
    frequencies: () => (state.view.band ? state.view.frequencies : undefined),
    names: Object.keys(maps),
    map: () => state.view.waterfall.map,
    chooseMap: (map) => {
      state.view.waterfall.setMap(map);
      state.view.panes.waterfall?.redraw();
    },
    chooseRange: (range) => state.view.setWaterfallRange(range),
  };
  buildControls(byId('controls'), client, showError, display);
  for (const tab of byId('decks').children) tab.setAttribute('aria-selected', String(tab.dataset.client === name));
  if (state.latest.has(name)) {
    state.view.update(state.latest.get(name).message);
    state.pending = state.latest.get(name);
  }
}

/** Comes with each connection, and anew when a tune, of this page or of another, has changed something. */
function hello(message) {
  state.ended = message.ended;
  state.dirty = true;
  for (const description of message.clients) {
    const known = state.clients.get(description.name);
    if (known) {
      known.describe(description);
      known.connection = connection;
    } else state.clients.set(description.name, new Client(description, connection));
  }
  if (!state.fresh) {
    refreshControls(byId('controls'), state.clients.get(state.current));
    return;
  }
  state.fresh = false;
  state.latest.clear();
  for (const name of state.clients.keys()) if (!message.clients.some((client) => client.name === name)) state.clients.delete(name);
  byId('decks').replaceChildren(...message.clients.map((client) => {
    const tab = document.createElement('button');
    tab.role = 'tab';
    tab.textContent = client.deck;
    tab.dataset.client = client.name;
    tab.addEventListener('click', () => select(client.name));
    return tab;
  }));
  const first = message.clients.find((client) => client.deck === 'spectrum') ?? message.clients[0];
  if (first) select(state.clients.has(state.current) ? state.current : first.name);
}

/** Draws the newest update; what came in between is in the spectrogram and nowhere else. */
function draw({ sequence, sent, arrived, timing }) {
  const begin = performance.now();
  state.view.draw();
  // The chart paints in a microtask of its own, which comes before this one.
  queueMicrotask(() => {
    state.drawn = sequence;
    if (!timing) return;
    const end = performance.now();
    state.timings.push({ ...timing, wait: begin - arrived, draw: end - begin, delay: performance.timeOrigin + end - sent });
    if (state.timings.length > keptTimings) state.timings.shift();
  });
}

function update(message, parse) {
  const lost = message.missed !== state.missed;
  state.missed = message.missed;
  state.received = message.sequence;
  state.clients.get(message.client)?.notice(message.message);
  const now = performance.now();
  if (message.client === state.current) {
    if (state.lastArrival) state.interval += 0.1 * (now - state.lastArrival - state.interval);
    state.lastArrival = now;
  }
  if (!state.running && state.wanted !== 'step' && state.wanted !== 'single') {
    state.skipped = true;
    return;
  }
  state.latest.set(message.client, message);
  if (message.client !== state.current) return;
  ++state.updates;
  const begin = performance.now();
  state.view.update(message.message, lost || state.skipped);
  state.skipped = false;
  const arrived = performance.now();
  state.pending = {
    sequence: message.sequence, sent: message.sent, arrived,
    timing: { building: message.building, writing: message.writing, parse, take: arrived - begin },
  };
  if (state.wanted === 'step' || (state.wanted === 'single' && state.view.complete())) setRunning(false);
}

function setRunning(running) {
  state.running = running;
  state.wanted = null;
  byId('run').textContent = running ? 'Hold' : 'Run';
  byId('run').setAttribute('aria-pressed', String(!running));
  state.dirty = true;
}

function want(what) {
  state.running = false;
  state.wanted = what;
  byId('run').textContent = 'Run';
  byId('run').setAttribute('aria-pressed', 'true');
}

function statusText() {
  const parts = state.view?.message ? state.view.status() : {};
  parts.Updates = `${(1000 / state.interval).toFixed(0)}/s`;
  parts.Missed = String(state.missed);
  parts.State = !state.connected ? 'reconnecting' : state.running ? (state.ended ? 'ended' : 'running') : state.wanted ?? 'held';
  return parts;
}

/** Picture, tables and status line follow the updates at most once a frame of the screen. */
function refresh() {
  if (state.pending) {
    draw(state.pending);
    state.pending = null;
  }
  if (state.dirty) {
    state.dirty = false;
    byId('status').replaceChildren(...Object.entries(statusText()).map(([name, text]) => {
      const item = document.createElement('span');
      const value = document.createElement('b');
      value.textContent = text;
      item.append(`${name} `, value);
      return item;
    }));
    if (state.view?.message) byId('figures').replaceChildren(...state.view.figures());
  }
  requestAnimationFrame(refresh);
}

function panes() { return Object.values(state.view?.panes ?? {}).filter(Boolean); }

const actions = {
  run: () => setRunning(!state.running),
  single: () => want('single'),
  step: () => want('step'),
  full: () => panes().forEach((pane) => pane.fullView()),
  auto: () => {
    state.view?.auto();
    for (const id of ['level-low', 'level-high']) if (byId(id)) byId(id).value = '';
  },
  picture: () => {
    const text = Object.entries(statusText()).map(([name, value]) => `${name} ${value}`).join('   ');
    savePicture('wavedeck.png', picture(panes(), variable('--background'), text, variable('--text')));
  },
  table: () => {
    const pane = state.view?.main;
    if (!pane) return;
    const status = statusText();
    const comments = [`deck: ${state.clients.get(state.current).deck}`, ...(status.RBW ? [`RBW: ${status.RBW}`] : [])];
    const { waterfall, lineFrequencies, unit } = state.view;
    saveText('wavedeck.csv', pane.traces.length ? traceText(pane, comments) : linesText(waterfall, lineFrequencies, unit, comments));
  },
  theme: () => {
    document.documentElement.dataset.theme = theme() === 'light' ? 'dark' : 'light';
    state.view?.restyle();
  },
  help: () => byId('keys').showModal(),
  peak: () => state.view?.main?.markPeak(),
  clear: () => panes().forEach((pane) => pane.clearMarkers()),
  hold: () => resetHold(state.clients.get(state.current)).catch(showError),
};

const keys = [
  [' ', 'run', 'space', 'run or hold'], ['s', 'single', 's', 'one complete measurement, then hold'], ['.', 'step', '.', 'one update'],
  ['f', 'full', 'f', 'full span'], ['a', 'auto', 'a', 'fit the level range'], ['h', 'hold', 'h', 'reset hold traces'],
  ['p', 'picture', 'p', 'save the picture'], ['c', 'table', 'c', 'save the trace'], ['t', 'theme', 't', 'light or dark'],
  ['m', 'peak', 'm', 'marker on the highest point'], ['Delete', 'clear', 'Delete', 'clear the markers'], ['?', 'help', '?', 'this page'],
];

const habits = [['wheel', 'zoom frequency or time; over the level axis, its range'], ['drag', 'zoom a box'], ['double click', 'full span'],
  ['click', 'marker, in the spectrogram too'], ['shift click', 'second marker, for the difference'], ['1 to 9', 'choose a deck']];

function buildHelp() {
  const rows = [...keys.map(([, , name, text]) => [name, text]), ...habits];
  const table = document.createElement('table');
  for (const [name, text] of rows) {
    const line = table.insertRow();
    const key = document.createElement('kbd');
    key.textContent = name;
    line.insertCell().append(key);
    line.insertCell().textContent = text;
  }
  const close = document.createElement('button');
  close.textContent = 'Close';
  close.addEventListener('click', () => byId('keys').close());
  byId('keys').replaceChildren(table, close);
}

document.addEventListener('keydown', (event) => {
  if (event.ctrlKey || event.metaKey || event.altKey || /^(INPUT|SELECT)$/.test(event.target.tagName)) return;
  const entry = keys.find(([key]) => key === event.key);
  const tab = byId('decks').children[Number(event.key) - 1];
  if (entry) actions[entry[1]]();
  else if (tab) tab.click();
  else return;
  event.preventDefault();
});
for (const id of ['run', 'single', 'step', 'full', 'auto', 'picture', 'table', 'theme', 'help']) {
  byId(id).addEventListener('click', () => {
    actions[id]();
    document.activeElement?.blur();
  });
}

if (matchMedia('(prefers-color-scheme: light)').matches) document.documentElement.dataset.theme = 'light';
buildHelp();
const connection = new Connection(url, {
  hello, update,
  state: (connected) => {
    state.connected = connected;
    state.fresh = state.fresh || connected;
    state.dirty = true;
  },
});
window.wavedeck.connection = connection;
requestAnimationFrame(refresh);
