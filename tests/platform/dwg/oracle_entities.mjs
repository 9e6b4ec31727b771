// Prints what the independent reader acad-ts makes of a DWG file, one line each:
//   "E TYPE HANDLE"  an entity of a block (model space, paper spaces and blocks) it read;
//   "U TYPE"         an entity of a kind it does not know, which it reads without a handle;
//   "X HANDLE"       an object it says it could not read.
// Handles in upper-case hexadecimal. Used by the DWG oracle test only.
import fs from 'fs';
import { pathToFileURL } from 'url';
// argv[2]: the folder that npm installed the package into (its node_modules' parent).
const entry = `${process.argv[2]}/node_modules/@node-projects/acad-ts/dist/index.js`;
const { DwgReader } = await import(pathToFileURL(entry).href);
const buffer = fs.readFileSync(process.argv[3]);
const bytes = buffer.buffer.slice(buffer.byteOffset, buffer.byteOffset + buffer.byteLength);
const lines = [];
const hex = (h) => h.toString(16).toUpperCase();
const doc = DwgReader.readFromStream(bytes, (_, e) => {
  const message = e?.message ?? '';
  let m = message.match(/^Unlisted object with DXF name (\S+) has been read as an UnknownEntity/);
  if (m) lines.push(`U ${m[1]}`);
  m = message.match(/^Could not read .* with handle: (\d+)/);
  if (m) lines.push(`X ${hex(Number(m[1]))}`);
});
for (const record of doc.blockRecords) {
  for (const e of record.entities) lines.push(`E ${e.objectName} ${hex(e.handle)}`);
}
console.log(lines.join('\n'));
