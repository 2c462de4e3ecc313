// SPDX-License-Identifier: MIT
import assert from 'node:assert/strict';
import test from 'node:test';

import {withPage} from './browser.mjs';

// The text and the real size of each picture on the page.
function pictures(page) {
  return page.locator('img').evaluateAll((images) => images.map((image) => ({
    text: image.alt,
    isComplete: image.complete,
    width: image.naturalWidth,
    height: image.naturalHeight,
  })));
}

async function assertPicturesAreThere(page, width, height) {
  const found = await pictures(page);
  assert.notEqual(found.length, 0, 'no pictures');
  for (const picture of found) {
    assert.ok(picture.isComplete, `${picture.text} is not loaded`);
    assert.deepEqual([picture.width, picture.height], [width, height], picture.text);
  }
  return found.length;
}

// Collects what the browser cannot load or run.
function watchForTroubles(page) {
  const troubles = [];
  page.on('pageerror', (error) => troubles.push(String(error)));
  page.on('requestfailed', (request) => troubles.push(`${request.url()} failed`));
  page.on('response', (response) => {
    if (!response.ok()) troubles.push(`${response.url()}: ${response.status()}`);
  });
  return troubles;
}

test('searches, opens a result and downloads its file', async () => {
  await withPage(async (page) => {
    const troubles = watchForTroubles(page);

    await page.goto('/search.html');
    assert.equal(await page.title(), 'All models and collections');
    assert.equal(await page.locator('.results li').count(), 12);
    assert.equal(await assertPicturesAreThere(page, 256, 192), 12);
    assert.match(await page.locator('main').innerText(), /1–12 of 106/);

    await page.getByRole('link', {name: 'Next'}).click();
    await page.waitForURL(/start=13/);
    await page.waitForLoadState('load');
    assert.equal(await assertPicturesAreThere(page, 256, 192), 12);

    await page.getByRole('searchbox').fill('椅子');
    await page.getByRole('button', {name: 'Search'}).click();
    await page.waitForURL(/search\.html\?q=/);
    await page.waitForLoadState('load');
    assert.equal(await page.getByRole('searchbox').inputValue(), '椅子');
    const titles = await page.locator('.results h2').allInnerTexts();
    assert.equal(titles.length, 10);
    assert.ok(titles.includes('木の椅子'), titles.join(', '));
    assert.equal(await assertPicturesAreThere(page, 256, 192), 10);

    await page.getByRole('link', {name: '木の椅子'}).click();
    await page.waitForURL(/\/model\?mid=/);
    await page.waitForLoadState('load');
    assert.equal(await page.getByRole('heading', {level: 1}).innerText(), '木の椅子');
    assert.equal(await assertPicturesAreThere(page, 640, 480), 1);

    assert.deepEqual(troubles, []);

    const download = page.waitForEvent('download');
    await page.getByRole('link', {name: 'Download qmf, version 6'}).click();
    assert.equal((await download).suggestedFilename(), '木の椅子.qmf');
  });
});
