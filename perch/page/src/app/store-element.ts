// An element that shows a part of the store and follows its changes.
import { LitElement } from 'lit';
import { property } from 'lit/decorators.js';
import type { Store } from '../model/store';
import { Follow } from './follow';

export class StoreElement extends LitElement {
  @property({ attribute: false }) store!: Store;

  constructor() {
    super();
    new Follow(this, () => this.store);
  }
}
