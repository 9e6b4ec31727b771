// Reads a DWG with acad-ts, then writes it as DWG REPEAT times and prints the wall time of one
// write: node acad_ts_write_bench.mjs ORACLE_DIR FILE.dwg [REPEAT]
import fs from 'fs';
import { pathToFileURL } from 'url';
const entry = `${process.argv[2]}/node_modules/@node-projects/acad-ts/dist/index.js`;
const { DwgReader, DwgWriter } = await import(pathToFileURL(entry).href);
const repeat = Number(process.argv[4] || 3);
const buffer = fs.readFileSync(process.argv[3]);
const doc = DwgReader.readFromStream(
  buffer.buffer.slice(buffer.byteOffset, buffer.byteOffset + buffer.byteLength), () => {});
const start = process.hrtime.bigint();
let size = 0;
for (let i = 0; i < repeat; ++i) size = DwgWriter.writeToBuffer(doc).length;
const seconds = Number(process.hrtime.bigint() - start) / 1e9 / repeat;
console.log(`acad-ts dwg write ${seconds.toFixed(3)} s bytes ${size}`);
