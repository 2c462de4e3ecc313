// SPDX-License-Identifier: MIT
// Starts an emulator and a headless Chromium for a test.
//
// The environment variables STOWRA_EMULATOR and STOWRA_CHROMIUM name the programs.

import {spawn} from 'node:child_process';
import {once} from 'node:events';
import {createInterface} from 'node:readline';

import {chromium} from 'playwright-core';

function program(variable) {
  const path = process.env[variable];
  if (!path || path.endsWith('-NOTFOUND')) throw new Error(`${variable} does not name a program`);
  return path;
}

async function startEmulator(options) {
  const child = spawn(program('STOWRA_EMULATOR'), ['--quiet', ...options],
                      {stdio: ['ignore', 'pipe', 'inherit']});
  const ended = once(child, 'exit');
  const [url] = await Promise.race([
    once(createInterface(child.stdout), 'line'),
    ended.then(() => Promise.reject(new Error('the emulator ended without an address'))),
  ]);
  const stop = async () => {
    child.kill('SIGTERM');
    await ended;
  };
  return {url, stop};
}

// Calls `use` with an emulator that runs with these options, and ends the emulator.
export async function withEmulator(options, use) {
  const emulator = await startEmulator(options);
  try {
    return await use(emulator);
  } finally {
    await emulator.stop();
  }
}

// Calls `use` with a browser, and ends the browser.
export async function withBrowser(use) {
  const browser = await chromium.launch({executablePath: program('STOWRA_CHROMIUM')});
  try {
    return await use(browser);
  } finally {
    await browser.close();
  }
}

// Calls `use` with a new page that resolves addresses against the emulator's. `settings` are the
// page's, such as viewport and colorScheme.
export async function withPage(use, settings = {}) {
  const viewport = {width: 1180, height: 800};
  await withEmulator([], ({url}) => withBrowser(async (browser) => {
    await use(await browser.newPage({baseURL: url, viewport, ...settings}));
  }));
}

// Posts a form such as {rule: '/update=reset'} outside of the page.
export async function post(page, path, form) {
  const response = await page.request.post(path, {form});
  if (!response.ok()) throw new Error(`${path}: ${response.status()}`);
}

// Uploads a model and returns its address.
export async function upload(page, name) {
  const file = {
    name: 'chair.qmf',
    mimeType: 'application/vnd.brevix.qmf',
    buffer: Buffer.from('x'),
  };
  const multipart = {name, subjectId: 'm42', subjectClass: 'entity', binary: file};
  const response = await page.request.post('/upload', {multipart});
  return (await response.json()).url;
}
