// The engine of the page, for tests under Node.
import {readFileSync} from "node:fs";

// The sources are modules, but Node takes files that end in .js for scripts unless it is told.
const source = name => readFileSync(new URL(`../../tools/page/${name}`, import.meta.url), "utf8");
const moduleOf = text => import(`data:text/javascript;base64,${Buffer.from(text).toString("base64")}`);
const address = text => `"data:text/javascript;base64,${Buffer.from(text).toString("base64")}"`;

export const {Engine, forms, nodeFields} =
    await moduleOf(source("engine.js").replace('"./text.js"', address(source("text.js"))));

export const engineOf = file => new Engine(new WebAssembly.Module(readFileSync(file)));
