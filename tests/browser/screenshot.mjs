// SPDX-License-Identifier: MIT
// screenshot.mjs FOLDER: saves the pictures in docs/emulator.md.

import {post, upload, withPage} from './browser.mjs';

await withPage(async (page) => {
  const folder = process.argv[2];
  await page.goto('/search.html?start=3');
  await page.screenshot({path: `${folder}/emulator-search.png`, fullPage: true});

  await upload(page, 'Blue chair');
  await post(page, '/-/faults', {rule: '/update=status:503@25'});
  await post(page, '/-/faults', {rule: '/search=drip'});
  await post(page, '/-/faults', {action: 'off', id: '2'});
  await page.request.get('/user-info');
  await page.request.get('/update?fault=status:503');
  await page.goto('/');
  await page.locator('#requests summary', {hasText: 'status:503'}).click();
  await page.screenshot({path: `${folder}/emulator-front.png`});
}, {viewport: {width: 1180, height: 1000}});
