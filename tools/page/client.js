// The page's side of the worker: `call` is a method of the engine whose result comes later.

export class Client {
  constructor(script, module) {
    const address = URL.createObjectURL(new Blob([script], {type: "text/javascript"}));
    this.worker = new Worker(address);
    this.waiting = new Map();
    this.last = 0;
    this.ready = new Promise((done, failed) => this.waiting.set(0, {done, failed}));
    this.worker.onmessage = ({data: {id, result, error}}) => {
      const {done, failed} = this.waiting.get(id);
      this.waiting.delete(id);
      if (error) failed(Object.assign(new Error(error.message), {at: error.at}));
      else done(result);
    };
    this.worker.postMessage(module, [module.buffer]);
  }

  call(method, ...given) {
    const id = ++this.last;
    const answer = new Promise((done, failed) => this.waiting.set(id, {done, failed}));
    this.worker.postMessage({id, method, given});
    return answer;
  }
}
