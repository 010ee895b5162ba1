/** What the tests of the display page and the scripts that look at it share: the program with its server, a browser, readings from the page. */

import assert from 'node:assert/strict';
import { execFileSync, spawn } from 'node:child_process';
import { existsSync } from 'node:fs';
import { after, before } from 'node:test';
import { chromium } from 'playwright-core';

const program = process.env.WAVEDECK ?? new URL('../../build/release/bin/wavedeck', import.meta.url).pathname;
const patience = 30000;

/** The browser that shows the pages. */
export let browser;

export async function launch() {
  const executablePath = ['/usr/bin/chromium', '/usr/bin/chromium-browser'].find((path) => existsSync(path));
  assert.ok(executablePath, 'chromium is not installed');
  browser = await chromium.launch({
    executablePath, timeout: patience,
    args: ['--disable-gpu', '--disable-background-networking', '--disable-component-update', '--no-first-run', '--disable-sync'],
  });
  return browser;
}

/** One browser for all tests of a file. Whatever happens, the process ends; what it started dies with it. */
export function shareBrowser() {
  before(launch);
  after(() => browser?.close());
  setTimeout(() => {
    console.error('not done after 280 s');
    process.exit(1);
  }, 280000).unref();
}

export function near(value, expected, tolerance, what) {
  assert.ok(Math.abs(value - expected) <= tolerance, `${what}: ${value} is not ${expected}`);
}

/** `wavedeck play ... --serve`: {url, port, stop()}. The kernel ends it should this process be killed. */
export async function serve(args, port = 0) {
  const child = spawn('setpriv', ['--pdeathsig', 'KILL', program, 'play', ...args, '--serve', String(port)],
    { stdio: ['ignore', 'ignore', 'pipe'] });
  const ended = new Promise((resolve) => { child.once('exit', resolve); });
  const url = await new Promise((resolve, reject) => {
    let text = '';
    const timer = setTimeout(() => reject(new Error(`no server: ${text}`)), patience);
    child.stderr.on('data', (data) => {
      text += data;
      const match = /display at (http:\S+)/.exec(text);
      if (match) {
        clearTimeout(timer);
        resolve(match[1]);
      }
    });
    child.once('exit', (status) => reject(new Error(`ended with ${status}: ${text}`)));
  });
  const stop = async () => {
    child.kill('SIGINT');
    const timer = setTimeout(() => child.kill('SIGKILL'), patience);
    await ended;
    clearTimeout(timer);
  };
  return { url, port: Number(new URL(url).port), stop };
}

/** The report of the same run without a browser, as JSON; of the one deck that it has. */
export function reportOf(args) {
  const text = execFileSync(program, ['play', ...args, '--report', 'json'], { timeout: patience, stdio: ['ignore', 'pipe', 'ignore'] });
  return JSON.parse(text).decks[0];
}

/**
 * Runs `check(page, server)` on a page that shows `args`, after the first picture; then closes the page, stops the
 * program and fails on any error that the page itself threw.
 */
export async function onPage(args, check, { viewport = { width: 1280, height: 760 } } = {}) {
  const server = await serve(args);
  const page = await browser.newPage({ viewport });
  try {
    page.setDefaultTimeout(patience);
    const errors = [];
    page.on('pageerror', (error) => errors.push(error.stack));
    await page.goto(server.url);
    await drawn(page);
    await check(page, server);
    assert.deepEqual(errors, []);
  } finally {
    await page.close();
    await server.stop();
  }
}

/**
 * Waits until a picture is drawn of which `condition(view, argument)` holds, which runs in the page. Asked from outside: the
 * page's own security policy allows no text to become code in it.
 */
export async function drawn(page, condition = () => true, argument = null) {
  const question = `(() => {
    const { state } = window.wavedeck;
    return Boolean(state.drawn !== undefined && !state.pending && state.view.message &&
      (${condition})(state.view, ${JSON.stringify(argument)}));
  })()`;
  for (const end = Date.now() + patience; Date.now() < end;) {
    if (await page.evaluate(question)) return;
    await new Promise((resolve) => { setTimeout(resolve, 20); });
  }
  assert.fail(`never drawn: ${condition} of ${JSON.stringify(argument)}`);
}

/** Waits until the input has ended and its last picture and figures are drawn. */
export async function ended(page) {
  await page.waitForFunction(() => {
    const { state } = window.wavedeck;
    return state.ended && !state.pending && !state.dirty && state.received > 0;
  });
}

/** Where on the screen a point of a pane's chart lies. */
export function place(page, pane, x, y) {
  return page.evaluate(([name, horizontal, vertical]) => {
    const { chart } = wavedeck.state.view.panes[name];
    const { left, top } = chart.over.getBoundingClientRect();
    return [left + chart.valToPos(horizontal, 'x'), top + chart.valToPos(vertical, 'y')];
  }, [pane, x, y]);
}

/** The rows of a table of figures as lists of text. */
export function tableRows(page, title) {
  return page.$$eval(`[data-table="${title}"] tbody tr`, (rows) => rows.map((row) => [...row.cells].map((cell) => cell.textContent)));
}

/** What the status line says, by name. */
export function status(page) {
  return page.$$eval('#status span', (items) => Object.fromEntries(items.map((item) => {
    const value = item.querySelector('b').textContent;
    return [item.textContent.slice(0, -value.length).trim(), value];
  })));
}

/** Waits until the status line says so: tables and texts are written less often than pictures are drawn. */
export async function says(page, name, pattern) {
  for (const end = Date.now() + patience; Date.now() < end && !pattern.test((await status(page))[name]);) {
    await new Promise((resolve) => { setTimeout(resolve, 20); });
  }
  assert.match((await status(page))[name], pattern);
}

/** Sets a field of the settings as a person would. */
export async function set(page, option, value) {
  const field = page.locator(`[data-option="${option}"]`);
  if (typeof value === 'boolean') await field.setChecked(value);
  else if (await field.evaluate((node) => node.tagName === 'SELECT')) await field.selectOption(value);
  else {
    await field.fill(value);
    await field.press('Enter');
    await field.blur();
  }
}

/** A number with its SI prefix, such as "12.5 kHz", as a number. */
export function quantity(text) {
  const [, number, prefix] = /^(-?[\d.e+-]+)\s*([TGMkmµnp]?)(?=[A-Za-z/]|$)/.exec(text);
  const scale = { T: 1e12, G: 1e9, M: 1e6, k: 1e3, m: 1e-3, 'µ': 1e-6, n: 1e-9, p: 1e-12 };
  return Number(number) * (scale[prefix] ?? 1);
}
