// SPDX-License-Identifier: MIT
// Writes the boundary and the expected reading of each YAML file on the command line.

import { readFileSync } from 'node:fs';
import { parse } from 'yaml';

import { encodeReading, writeText } from './frames.mjs';

function partOf(expected) {
  return {
    name: expected.name,
    fileName: expected.file_name,
    type: expected.content_type,
    content: Buffer.from(expected.data),
  };
}

for (const file of process.argv.slice(2)) {
  // YAML 1.1 has the type "binary"; here it becomes bytes.
  const { boundary, expected } = parse(readFileSync(file, 'utf8'), { version: '1.1' });
  await writeText(Buffer.from(boundary));
  await writeText(encodeReading(
      Array.isArray(expected) ? { parts: expected.map(partOf) }
                              : { error: `expected at byte ${expected.error}` }));
}
