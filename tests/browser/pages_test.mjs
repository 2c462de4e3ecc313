// SPDX-License-Identifier: MIT
// Every page in three widths, light and dark. With STOWRA_SCREENSHOTS, a folder, pictures are kept.

import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import {createRequire} from 'node:module';
import test from 'node:test';

import {post, upload, withPage} from './browser.mjs';

const axe = readFileSync(createRequire(import.meta.url).resolve('axe-core'), 'utf8');

const longWord = 'Donaudampfschifffahrtsgesellschaftskapitänsmützenabzeichen'.repeat(3);

const pages = {
  front: '/',
  search: '/search.html',
  collection: '/search.html?collection=c-1',
  longWord: `/search.html?q=${longWord}`,
  nothing: '/search.html?q=nothing-like-it',
  model: '/model?mid=m-1001',
  uploaded: '/model?mid=m-1101',
  uploadSucceeded: '/upload-succeeded?mid=m-1101',
  uploadFailed: `/upload-failed?reason=${longWord}`,
  error: `/nope/${longWord}`,
  badParameter: '/model',
};

async function violations(page) {
  await page.evaluate(axe);
  const found = await page.evaluate(() => window.axe.run({resultTypes: ['violations']}));
  assert.ok(found.passes.length > 10, 'axe has run');
  return found.violations.map(
      ({id, nodes}) => `${id}: ${nodes.map((node) => node.html).join(' | ')}`);
}

// Elements that are wider than the page or reach out of it.
function overflows(page) {
  return page.evaluate(() => [...document.querySelectorAll('body *')]
      .filter((element) => {
        const box = element.getBoundingClientRect();
        return box.width > 0 && (box.right > innerWidth + 1 || box.left < -1);
      })
      .map((element) => element.outerHTML.slice(0, 80)));
}

async function fillFrontPage(page) {
  await upload(page, `Blue ${longWord}`);
  await post(page, '/-/faults', {rule: '/update=status:503@25'});
  await post(page, '/-/faults', {rule: '*=drip:0@10'});
  await post(page, '/-/faults', {action: 'off', id: '2'});
  await page.request.get(`/user-info?user=${longWord}`);
  await page.request.get('/user-info?fault=garbage');
}

for (const colorScheme of ['light', 'dark']) {
  for (const width of [320, 768, 1280]) {
    test(`pages are sound at ${width} px in ${colorScheme}`, async () => {
      await withPage(async (page) => {
        await fillFrontPage(page);
        for (const [name, address] of Object.entries(pages)) {
          await page.goto(address);
          if (name === 'front') {
            await page.locator('#requests summary').first().click();
            await page.locator('#requests pre').first().waitFor();
          }
          if (process.env.STOWRA_SCREENSHOTS) {
            const path = `${process.env.STOWRA_SCREENSHOTS}/${name}-${width}-${colorScheme}.png`;
            await page.screenshot({path, fullPage: true});
          }
          const where = `${name} at ${width} px in ${colorScheme}`;
          assert.deepEqual(await overflows(page), [], where);
          const scrolls = await page.evaluate(
              () => document.documentElement.scrollWidth > document.documentElement.clientWidth);
          assert.equal(scrolls, false, where);
          assert.deepEqual(await violations(page), [], where);
          const background = await page.evaluate(
              () => getComputedStyle(document.body).backgroundColor.match(/\d+/g).map(Number));
          assert.equal(background[0] < 128, colorScheme === 'dark', where);
        }
      }, {colorScheme, viewport: {width, height: 800}});
    });
  }
}
