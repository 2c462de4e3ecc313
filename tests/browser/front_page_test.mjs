// SPDX-License-Identifier: MIT
import assert from 'node:assert/strict';
import test from 'node:test';

import {upload, withPage} from './browser.mjs';

test('shows each request when it is answered', async () => {
  await withPage(async (page) => {
    const origins = new Set();
    page.on('request', (request) => origins.add(new URL(request.url()).origin));
    await page.goto('/');
    await page.getByText('Live: new requests come at the top.').waitFor();
    assert.equal(await page.locator('#requests li').count(), 0);

    await page.request.get('/update?fault=status:503');
    // The next request may come on a connection of its own, and be noted first.
    await page.locator('#requests li').waitFor();
    await page.request.post('/extensions', {data: {extensions: [{id: 'roof-tools'}]}});
    await page.locator('#requests li').nth(1).waitFor();
    const summaries = await page.locator('#requests summary').allInnerTexts();
    assert.match(summaries[0], /^200 POST \/extensions /);
    assert.match(summaries[1], /^503 GET \/update\?fault=status:503 status:503 /);

    await page.locator('#requests summary').first().click();
    const [request, response] = await page.locator('#requests pre').allInnerTexts();
    assert.match(request, /^POST \/extensions HTTP\/1\.1[^]*"id":"roof-tools"/);
    assert.match(response, /^HTTP\/1\.1 200 OK[^]*"version": "2\.5"/);
    assert.deepEqual([...origins], [new URL(page.url()).origin]);
  });
});

test('keeps the last two hundred requests', async () => {
  await withPage(async (page) => {
    await page.goto('/');
    for (let i = 0; i < 210; ++i) await page.request.get(`/user-info?user=${i}`);
    await page.locator('#requests .target', {hasText: 'user=209'}).waitFor();
    assert.equal(await page.locator('#requests li').count(), 200);
    await page.reload();
    await page.locator('#requests .target', {hasText: 'user=209'}).waitFor();
    assert.equal(await page.locator('#requests li').count(), 200);
  });
});

test('sets, switches and removes a fault by keyboard', async () => {
  await withPage(async (page) => {
    const status = async () => (await page.request.get('/update')).status();
    await page.goto('/');
    await page.getByLabel('Route').focus();
    await page.keyboard.type('/update');
    await page.keyboard.press('Tab');
    await page.keyboard.type('status');
    await page.keyboard.press('Tab');
    await page.keyboard.type('503');
    await page.keyboard.press('Tab');
    await page.keyboard.press('Tab');
    await page.keyboard.press('Enter');
    const fault = page.getByRole('switch', {name: '/update=status:503'});
    await fault.waitFor();
    assert.equal(await fault.getAttribute('aria-checked'), 'true');
    assert.equal(await status(), 503);

    await fault.press('Space');
    await page.getByRole('switch', {checked: false}).waitFor();
    assert.equal(await status(), 200);

    await page.getByRole('button', {name: 'Remove /update=status:503'}).press('Enter');
    await page.getByText('Every answer is in order.').waitFor();
    assert.equal(await status(), 200);
  });
});

test('works without a script', async () => {
  await withPage(async (page) => {
    await page.goto('/');
    await page.getByLabel('Value').fill('404');
    await page.getByRole('button', {name: 'Add fault'}).click();
    await page.getByRole('switch', {name: '*=status:404'}).waitFor();
    assert.equal((await page.request.get('/search')).status(), 404);
  }, {javaScriptEnabled: false});
});

test('shows uploads with pictures and all their files', async () => {
  await withPage(async (page) => {
    await upload(page, 'Blue chair');
    await page.goto('/');
    await page.getByRole('link', {name: 'Blue chair'}).click();
    await page.waitForURL(/mid=m-1101/);
    await page.getByText('rtyp=s, application/vnd.brevix.qmf, 1 bytes').waitFor();
    await page.goto('/model?mid=m-1001');
    assert.equal(await page.getByRole('link', {name: /^Download/}).count(), 6);
  });
});

test('tells a person about an error', async () => {
  await withPage(async (page) => {
    const response = await page.goto('/model?mid=m-9999');
    assert.equal(response.status(), 404);
    await page.getByText("no model 'm-9999'").waitFor();
    await page.getByRole('link', {name: 'All routes'}).click();
    await page.getByRole('heading', {level: 1, name: 'stowra-emulator'}).waitFor();
  });
});
