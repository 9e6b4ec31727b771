// Prints "TYPE HANDLE" (handle in upper-case hexadecimal) for each model-space entity that the
// independent reader acad-ts reads from a DWG file. Used by the DWG oracle test only.
import fs from 'fs';
import { pathToFileURL } from 'url';
// argv[2]: the folder that npm installed the package into (its node_modules' parent).
const entry = `${process.argv[2]}/node_modules/@node-projects/acad-ts/dist/index.js`;
const { DwgReader } = await import(pathToFileURL(entry).href);
const buffer = fs.readFileSync(process.argv[3]);
const bytes = buffer.buffer.slice(buffer.byteOffset, buffer.byteOffset + buffer.byteLength);
const doc = DwgReader.readFromStream(bytes, () => {});
for (const e of doc.modelSpace.entities) {
  console.log(`${e.objectName} ${e.handle.toString(16).toUpperCase()}`);
}
