// screenshot.mjs FILE: saves the search page as a PNG picture.

import {withPage} from './browser.mjs';

await withPage(async (page) => {
  await page.goto('/search.html?start=3');
  await page.screenshot({path: process.argv[2], fullPage: true});
});
