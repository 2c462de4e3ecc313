// SPDX-License-Identifier: MIT
// What a browser saves replays.

import assert from 'node:assert/strict';
import {mkdtemp, readFile, rm} from 'node:fs/promises';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import test from 'node:test';

import {withBrowser, withEmulator} from './browser.mjs';

// Everything a page loads while it is open, by path.
async function visit(browser, url, settings) {
  const context = await browser.newContext({baseURL: url, ...settings});
  const page = await context.newPage();
  const loaded = new Map();
  const bodies = [];
  page.on('response', (response) => {
    bodies.push(response.body().then((body) => {
      loaded.set(response.url().slice(url.length), [response.status(), body.toString('base64')]);
    }));
  });
  await page.goto('/search.html?q=chair', {waitUntil: 'networkidle'});
  await Promise.all(bodies);
  await context.close();
  return loaded;
}

test('a saved session of a browser comes back with the same bytes', async () => {
  const folder = await mkdtemp(join(tmpdir(), 'replay-'));
  const path = join(folder, 'session.har');
  try {
    await withBrowser(async (browser) => {
      const recorded = await withEmulator(
          [], ({url}) => visit(browser, url, {recordHar: {path, content: 'embed'}}));
      assert.ok(recorded.size > 10, `${recorded.size} responses`);
      const archive = JSON.parse(await readFile(path, 'utf8'));
      assert.equal(archive.log.version, '1.2');
      const replayed = await withEmulator(
          ['--replay', path, '--replay-order', 'matched'], ({url}) => visit(browser, url, {}));
      assert.deepEqual([...replayed.entries()].sort(), [...recorded.entries()].sort());
    });
  } finally {
    await rm(folder, {recursive: true});
  }
});
