// The worker: the engine, for a page that must not wait for it. A request names a method of the engine; one that fails
// is answered with the reason.
import {Engine} from "./engine.js";

const module = new Promise(given => {
  self.onmessage = event => given(event.data);
});

module.then(bytes => {
  const engine = new Engine(new WebAssembly.Module(bytes));
  self.onmessage = ({data: {id, method, given}}) => {
    try {
      self.postMessage({id, result: engine[method](...given)});
    } catch (error) {
      self.postMessage({id, error: {message: error.message, at: error.at ?? -1}});
    }
  };
  self.postMessage({id: 0});
});
