/** The WebSocket to the program: updates in, tunes out; reconnects by itself. */

export class Connection {
  /** `handlers`: hello(message), update(message, milliseconds that parsing took), state(connected). */
  constructor(url, handlers) {
    this.url = url;
    this.handlers = handlers;
    this.waiting = new Map();
    this.nextRequest = 1;
    this.bytes = 0;
    this.delay = 250;
    this.open();
  }

  open() {
    const socket = new WebSocket(this.url);
    this.socket = socket;
    socket.onopen = () => {
      this.delay = 250;
      this.handlers.state(true);
    };
    socket.onmessage = (event) => {
      const begin = performance.now();
      this.bytes += event.data.length;
      const message = JSON.parse(event.data);
      this.receive(message, performance.now() - begin);
    };
    socket.onclose = () => {
      this.handlers.state(false);
      for (const { reject } of this.waiting.values()) reject(new Error('connection lost'));
      this.waiting.clear();
      setTimeout(() => this.open(), this.delay);
      this.delay = Math.min(4000, this.delay * 2);
    };
  }

  receive(message, parseMilliseconds) {
    if (message.type === 'hello') this.handlers.hello(message);
    else if (message.type === 'update') this.handlers.update(message, parseMilliseconds);
    else if (this.waiting.has(message.request)) {
      const { resolve, reject } = this.waiting.get(message.request);
      this.waiting.delete(message.request);
      if (message.type === 'error') reject(new Error(message.text)); else resolve(message);
    }
  }

  /** Sends options to a stage; resolves when the program has taken them, rejects with the option's own error text. */
  tune(client, stage, options) {
    return new Promise((resolve, reject) => {
      if (this.socket.readyState !== WebSocket.OPEN) {
        reject(new Error('not connected'));
        return;
      }
      const request = this.nextRequest++;
      this.waiting.set(request, { resolve, reject });
      this.socket.send(JSON.stringify({ type: 'tune', request, client, stage, options }));
    });
  }
}
