// The page: what is open, what is marked, and what follows when either changes.
import {BytesView} from "./bytes_view.js";
import {Client} from "./client.js";
import {Descriptions} from "./descriptions.js";
import {byId, element} from "./elements.js";
import {JsonView} from "./json_view.js";
import {Message} from "./message.js";
import {Outputs, messageIn} from "./outputs.js";
import {DifferencesPanel, FailurePanel, MessagesPanel, SegmentsPanel} from "./panels.js";
import {bytesOf} from "./text.js";
import {TreeView} from "./tree_view.js";

const bytesOfBase64 = text => Uint8Array.from(atob(text), each => each.charCodeAt(0));

class Page {
  constructor() {
    this.client = new Client(byId("worker-script").textContent, bytesOfBase64(byId("module").textContent));
    this.message = null;
    this.other = null;
    this.type = "";
    this.selected = -1;
    this.hovered = -1;
    this.past = [];
    this.future = [];
    this.descriptions = new Descriptions(this.client, () => this.redraw());
    this.views = [new BytesView(this), new TreeView(this), new JsonView(this)];
    this.failure = new FailurePanel(this);
    this.messages = new MessagesPanel(this);
    this.segments = new SegmentsPanel(this);
    this.differences = new DifferencesPanel(this);
    new Outputs(this);
    this.listen();
  }

  get current() { return this.hovered >= 0 ? this.hovered : this.selected; }

  async start() {
    await this.client.ready;
    this.types = await this.client.call("types");
    const samples = JSON.parse(byId("samples").textContent);
    const select = byId("sample");
    for (const name of Object.keys(samples)) select.append(element("option", {value: name}, name));
    select.addEventListener("change", () => {
      if (select.value === "") return;
      byId("type").value = "";
      this.read(bytesOfBase64(samples[select.value]), "raw", select.value.split(".")[0]);
      select.value = "";
    });
    this.showTypes(this.types.map(type => ({name: type.name, words: ""})));
    document.body.dataset.ready = "true";
    await this.readLink();
  }

  fieldsOf(type) { return this.types.find(each => each.name === type)?.fields ?? []; }

  // --- Input ---

  listen() {
    byId("input").addEventListener("submit", event => {
      event.preventDefault();
      this.readText();
    });
    byId("pasted").addEventListener("paste", () => setTimeout(() => this.readText()));
    byId("file").addEventListener("change", event => this.readFile(event.target.files[0]));
    document.addEventListener("dragover", event => {
      event.preventDefault();
      document.body.classList.add("dropping");
    });
    document.addEventListener("dragleave", () => document.body.classList.remove("dropping"));
    document.addEventListener("drop", event => {
      event.preventDefault();
      document.body.classList.remove("dropping");
      const file = event.dataTransfer.files[0];
      if (file) return this.readFile(file);
      byId("pasted").value = event.dataTransfer.getData("text");
      this.readText();
    });
    byId("type").addEventListener("change", () => this.changeType());
    byId("undo").addEventListener("click", () => this.step(this.past, this.future));
    byId("redo").addEventListener("click", () => this.step(this.future, this.past));
    document.addEventListener("keydown", event => {
      if (!(event.ctrlKey || event.metaKey) || event.target.matches("input, textarea")) return;
      if (event.key === "z") this.step(this.past, this.future);
      else if (event.key === "y") this.step(this.future, this.past);
      else return;
      event.preventDefault();
    });
    window.addEventListener("hashchange", () => this.readLink());
    window.addEventListener("error", event => this.say(`The page has failed: ${event.message}`));
    window.addEventListener("unhandledrejection", event => this.say(`The page has failed: ${event.reason?.message}`));
  }

  readText() { return this.read(bytesOf(byId("pasted").value), byId("form").value); }

  async readFile(file) {
    if (!file) return;
    await this.read(new Uint8Array(await file.arrayBuffer()), byId("form").value);
    byId("file").value = "";
  }

  async readLink() {
    try {
      const found = messageIn(location.hash);
      if (!found) return;
      await this.open(found.type, found.bytes);
      if (found.other) await this.compareWith(found.type, found.other);
      this.say("");
    } catch (error) {
      this.say(`The link cannot be read: ${error.message}`);
    }
  }

  // Reads an input in a form, as a message of the type that is chosen, given or guessed.
  async read(input, form, type = byId("type").value) {
    try {
      if (form === "auto") form = await this.client.call("formOf", input);
      const isText = form === "json" || form === "text";
      if (isText) type ||= await this.typeOfText(input, form === "json");
      const found = isText
          ? {messages: [{bytes: await this.client.call("encode", type, input, form === "json"), isSingle: true}], notes: ""}
          : await this.client.call("messagesIn", input, form === "bytes" ? "auto" : form, byId("stream").value,
              Number(byId("port").value));
      this.messages.show(found, type);
      this.say("");
      if (found.messages.length > 0) await this.openMessage(found.messages[0].bytes, type);
    } catch (error) {
      this.say(error.message);
    }
  }

  async openMessage(bytes, type) {
    const guessed = await this.client.call("guess", bytes);
    this.showTypes(guessed);
    type ||= guessed[0].name;
    if (byId("second").checked && this.message) await this.compareWith(type, bytes);
    else await this.open(type, bytes);
  }

  // The outermost of those that it can be: a message comes after those that it contains.
  async typeOfText(input, isJson) {
    const names = await this.client.call("typesOf", input, isJson);
    if (names.length > 0) return names.at(-1);
    return this.type || this.types.at(-1).name;
  }

  showTypes(candidates) {
    const option = ({name, words}) => element("option", {value: name}, words ? `${name}: ${words}` : name);
    const whole = candidates.filter(each => each.whole), others = candidates.filter(each => !each.whole);
    const group = (label, list) => list.length > 0 ? [element("optgroup", {label}, ...list.map(option))] : [];
    byId("type").replaceChildren(element("option", {value: ""}, "guess"), ...group("read every byte", whole),
        ...group(whole.length > 0 ? "others" : "messages", others));
    byId("type").value = "";
  }

  async changeType() {
    const type = byId("type").value;
    if (!this.message || type === "" || type === this.type) return;
    this.endComparison();
    await this.open(type, this.message.bytes);
    this.say("");
  }

  // --- The message ---

  async open(type, bytes, keepsHistory = false) {
    const message = new Message(await this.client.call("open", 0, type, bytes));
    if (this.message && !keepsHistory) {
      this.past.push({type: this.type, bytes: this.message.bytes});
      this.future = [];
    }
    if (this.other && type !== this.type) this.endComparison();
    const path = this.message && type === this.type && this.selected >= 0 ? this.message.pathOf(this.selected) : [];
    this.message = message;
    this.type = type;
    this.selected = message.nodeOf(path);
    this.hovered = -1;
    this.descriptions.reset();
    this.show();
  }

  show() {
    const {summary, bytes} = this.message;
    document.body.classList.add("open");
    byId("undo").disabled = this.past.length === 0;
    byId("redo").disabled = this.future.length === 0;
    const state = summary.failure ? summary.result
        : summary.canonical ? "canonical"
        : `encoded anew it has ${summary.encoded} bytes${summary.unknown ? `, without ${summary.unknown} of unknown fields` : ""}`;
    byId("summary").textContent = `${this.type}, ${bytes.length} byte${bytes.length === 1 ? "" : "s"}, ${state}`;
    if (summary.disagreement) this.say(`The library and this tool disagree: ${summary.result}, ${summary.disagreement}. Please report it.`);
    byId("type").value = [...byId("type").options].some(each => each.value === this.type) ? this.type : "";
    for (const view of this.views) view.show();
    this.failure.show();
    this.segments.show();
    this.differences.show();
  }

  // Makes a change by a method of the engine that gives the bytes of the changed message.
  async change(method, ...given) {
    const serial = this.changes = (this.changes ?? 0) + 1;
    const bytes = await this.client.call(method, ...given);
    if (serial !== this.changes) return;
    await this.open(this.type, bytes);
  }

  async tryChange(method, ...given) {
    try {
      await this.change(method, ...given);
      this.say("");
    } catch (error) {
      this.say(error.message);
    }
  }

  async step(from, to) {
    const state = from.pop();
    if (!state) return;
    to.push({type: this.type, bytes: this.message.bytes});
    await this.open(state.type, state.bytes, true);
  }

  // --- Two messages ---

  async compareWith(type, bytes) {
    const name = this.type;
    if (type !== name) this.say(`The second message is read as ${name} too.`);
    this.other = new Message(await this.client.call("open", 1, name, bytes));
    byId("second").checked = false;
    await this.differences.show();
    byId("differences-panel").scrollIntoView({block: "nearest"});
  }

  endComparison() {
    this.other = null;
    this.differences.show();
  }

  async swap() {
    const {bytes} = this.message;
    const second = this.other.bytes;
    this.other = new Message(await this.client.call("open", 1, this.type, bytes));
    await this.open(this.type, second);
  }

  // --- What is marked ---

  mark(node) {
    if (node === this.hovered) return;
    this.hovered = node;
    this.redraw();
  }

  // The other views show it; the one that it was selected in stays where it is.
  select(node, from) {
    if (!this.message) return;
    this.selected = node < this.message.count ? node : -1;
    this.hovered = -1;
    for (const view of this.views) {
      if (view !== from) view.reveal(this.selected);
    }
    this.redraw();
  }

  redraw() {
    if (!this.message) return;
    for (const view of this.views) view.redraw();
    const words = this.current >= 0 ? this.descriptions.get(this.current) : null;
    byId("where").textContent = words === null ? "" : this.describe(this.current, words);
  }

  describe(node, words) {
    const start = this.message.get(node, "start"), size = this.message.get(node, "end") - start;
    return `${words.parent}${words.name}${words.key ? ` (${words.key})` : ""}${words.meaning}${words.remarks ?? ""} — ` +
        `offset ${start} (0x${start.toString(16)}), ${size} byte${size === 1 ? "" : "s"}`;
  }

  // The node of a path in words: "hops[1].field3".
  nodeNamed(text) {
    let fields = this.fieldsOf(this.type);
    const path = [];
    for (const part of text.split(".")) {
      const [, name, index] = /^([^[]*)(?:\[(\d+)\])?$/.exec(part);
      const field = fields.find(each => each.name === name);
      path.push([field.number, -1]);
      if (index !== undefined) path.push([field.number, Number(index)]);
      fields = this.fieldsOf(field.message);
    }
    return this.message.nodeOf(path);
  }

  say(text) { byId("problem").textContent = text; }
}

const page = new Page();
page.start();
