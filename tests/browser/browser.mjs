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

async function startEmulator() {
  const child = spawn(program('STOWRA_EMULATOR'), ['--quiet'], {stdio: ['ignore', 'pipe', 'inherit']});
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

// Calls `use` with a new page that resolves addresses against the emulator's. Ends both programs
// afterwards.
export async function withPage(use) {
  const emulator = await startEmulator();
  try {
    const browser = await chromium.launch({executablePath: program('STOWRA_CHROMIUM')});
    try {
      const viewport = {width: 1180, height: 800};
      await use(await browser.newPage({baseURL: emulator.url, viewport}));
    } finally {
      await browser.close();
    }
  } finally {
    await emulator.stop();
  }
}
