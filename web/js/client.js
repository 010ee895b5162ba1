/** What the page knows of one client of the program: its stages, their options as they stand, and a way to tune them. */

export class Client {
  /** description: from the program's hello; connection: where tunes go. */
  constructor(description, connection) {
    this.name = description.name;
    this.deck = description.deck;
    this.connection = connection;
    this.waiting = [];
    this.describe(description);
  }

  describe(description) {
    this.stages = new Map(description.stages.map((stage) => [stage.name, stage]));
  }

  /** The stage of a chain, which bears another name in a simulation. */
  stage(name) { return this.stages.get(name) ?? this.stages.get(`bf_${name}`); }

  /** The option's description {name, kind, words, unit, value} or undefined. */
  option(stage, name) { return this.stage(stage)?.options.find((option) => option.name === name); }

  value(stage, name, fallback) { return this.option(stage, name)?.value ?? fallback; }

  /** Told of every update, drawn or not. */
  notice(message) {
    this.waiting = this.waiting.filter(({ condition, resolve }) => {
      if (!condition(message)) return true;
      resolve();
      return false;
    });
  }

  /** Resolves with the first update of which `condition` holds; without one after 5 s. */
  until(condition) {
    return new Promise((resolve) => {
      const entry = { condition, resolve };
      this.waiting.push(entry);
      setTimeout(() => {
        this.waiting = this.waiting.filter((other) => other !== entry);
        resolve();
      }, 5000);
    });
  }

  /** Sends options to a stage and keeps their new values; rejects with the option's own error text. */
  async tune(stage, options) {
    await this.connection.tune(this.name, this.stage(stage)?.name ?? stage, options);
    for (const [name, value] of Object.entries(options)) {
      const option = this.option(stage, name);
      if (option) option.value = value;
    }
  }
}
