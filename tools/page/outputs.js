// What can be taken away: the message in every form, a command that shows the same, a link that holds it.
import {byId, element} from "./elements.js";
import {bytesOf, textOf} from "./text.js";

const mostInLink = 65536;

export function base64Of(bytes) {
  let text = "";
  for (let at = 0; at < bytes.length; at += 8192) text += String.fromCharCode(...bytes.subarray(at, at + 8192));
  return btoa(text);
}

// The message goes after the #, which browsers do not send.
export function linkTo(type, bytes, other) {
  const part = each => base64Of(each).replaceAll("+", "-").replaceAll("/", "_").replace(/=+$/, "");
  if (bytes.length + (other?.length ?? 0) > mostInLink) throw new Error(`a link holds at most ${mostInLink} bytes`);
  return `#${type}=${part(bytes)}${other ? `&with=${part(other)}` : ""}`;
}

export function messageIn(link) {
  const found = /^#([a-z0-9_]+)=([\w-]*)(?:&with=([\w-]*))?$/.exec(link);
  if (!found) return null;
  const content = text => Uint8Array.from(atob(text.replaceAll("-", "+").replaceAll("_", "/")), each => each.charCodeAt(0));
  return {type: found[1], bytes: content(found[2]), other: found[3] === undefined ? null : content(found[3])};
}

const input = bytes => `<(echo ${base64Of(bytes)})`;

export function commandFor(type, bytes, other) {
  if (other) return `zorv-inspect diff --all --input=base64 ${type} ${input(bytes)} ${input(other)}`;
  return `echo ${base64Of(bytes)} | zorv-inspect hex --input=base64 ${type}`;
}

// The forms, with the ends of file names.
const outputs = {
  raw: ".bin", hex: ".hex", dump: ".dump", base64: ".base64", json: ".json", text: ".txtpb", annotated: ".annotated", c: ".c",
  command: ".sh", link: ".url",
};

export class Outputs {
  constructor(page) {
    this.page = page;
    byId("save").addEventListener("click", () => this.give(this.save));
    byId("copy").addEventListener("click", () => this.give(this.copy));
  }

  async content(form) {
    const {page} = this;
    if (form === "json") return page.message.json;
    const given = [page.type, page.message.bytes, page.other?.bytes];
    if (form === "command") return bytesOf(`${commandFor(...given)}\n`);
    if (form === "link") return bytesOf(`${location.href.replace(/#.*/, "")}${linkTo(...given)}\n`);
    return page.client.call("written", 0, form);
  }

  async give(how) {
    if (!this.page.message) return this.page.say("There is no message yet.");
    const form = byId("output").value;
    try {
      await how.call(this, form, await this.content(form));
    } catch (error) {
      this.page.say(error.message);
    }
  }

  save(form, content) {
    const address = URL.createObjectURL(new Blob([content]));
    element("a", {href: address, download: this.page.type + outputs[form]}).click();
    setTimeout(() => URL.revokeObjectURL(address), 10000);
  }

  async copy(form, content) {
    const text = form === "raw" ? null : textOf(content);
    if (text === null) return this.page.say("Bytes cannot be copied as text: choose another form, or save them.");
    byId("copied").value = text;
    byId("copied").hidden = false;
    byId("copied").select();
    // Without permission, the text is at least selected.
    try {
      await navigator.clipboard.writeText(text.trimEnd());
      this.page.say("Copied.");
    } catch {
      this.page.say("The text is selected below: copy it from there.");
    }
    if (form === "link") history.replaceState(null, "", text.trim().replace(/^[^#]*/, ""));
  }
}
