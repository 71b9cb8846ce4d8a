// What every control of a parameter has: the store, the parameter, and its present value.
import { property } from 'lit/decorators.js';
import { StoreElement } from '../app/store-element';
import type { Parameter, Value } from '../model/session';

let gestures = 0;

export class Control extends StoreElement {
  @property({ attribute: false }) parameter!: Parameter;
  private gesture: string | null = null;

  protected get value(): Value | undefined {
    return this.store.value(this.parameter.key);
  }

  protected get number(): number {
    return typeof this.value === 'number' ? this.value : 0;
  }

  protected get precision(): number {
    return this.parameter.precision ?? 0;
  }

  // One of many values on the way of a drag.
  protected move(value: Value): void {
    this.gesture ??= `${this.parameter.key} ${(gestures += 1)}`;
    this.store.setValue(this.parameter.key, value, this.gesture);
  }

  // The last value of a drag, or the only one.
  protected settle(value: Value): void {
    this.store.setValue(this.parameter.key, value, this.gesture);
    this.gesture = null;
    this.store.endGesture();
  }
}
