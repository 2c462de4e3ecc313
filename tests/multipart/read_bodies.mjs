// SPDX-License-Identifier: MIT
// Reads multipart bodies. A request is a Content-Type and a body. The answer is the parser's
// reading.

import multiparty from 'multiparty';
import { Readable } from 'node:stream';

import { encodeReading, readText, writeText } from './frames.mjs';

function requestOf(contentType, body) {
  const request = new Readable({ read() {} });
  request.headers = { 'content-type': contentType, 'content-length': String(body.length) };
  request.push(body);
  request.push(null);
  return request;
}

function read(contentType, body) {
  return new Promise(resolve => {
    const found = [];
    const form = new multiparty.Form();
    form.on('part', part => {
      const chunks = [];
      part.on('data', chunk => chunks.push(chunk));
      part.on('error', () => {});  // the form reports the same error
      found.push({ part, chunks });
    });
    form.on('error', error => resolve({ error: error.message }));
    form.on('close', () => resolve({
      parts: found.map(({ part, chunks }) => ({
        name: part.name ?? '',  // null without Content-Disposition
        fileName: part.filename ?? undefined,
        type: part.headers['content-type'],
        disposition: part.headers['content-disposition'],
        content: Buffer.concat(chunks),
      })),
    }));
    form.parse(requestOf(contentType, body));
  });
}

for (let type = readText(); type !== undefined; type = readText()) {
  await writeText(encodeReading(await read(type.toString(), readText())));
}
