// The line between the original, to its left, and the result.
import { LitElement, css, html } from 'lit';
import { customElement, property } from 'lit/decorators.js';
import { Follow } from '../app/follow';
import { place } from '../app/place';
import { shared } from '../app/theme';
import { clamped } from '../model/number';
import type { Viewing } from '../model/viewing';

@customElement('wipe-divider')
export class WipeDivider extends LitElement {
  static override styles = [
    shared,
    css`
      :host {
        display: contents;
      }
      div {
        position: absolute;
        width: 13px;
        margin-left: -6.5px;
        background: linear-gradient(#fff, #fff) center / 1px 100% no-repeat;
        filter: drop-shadow(0 0 1px #000);
        cursor: ew-resize;
        touch-action: none;
      }
      div::after {
        content: '';
        position: absolute;
        top: 50%;
        left: 1px;
        width: 11px;
        height: 28px;
        margin-top: -14px;
        border-radius: 4px;
        background: #fff;
      }
    `,
  ];

  @property({ attribute: false }) viewing!: Viewing;

  constructor() {
    super();
    new Follow(this, () => this.viewing);
  }

  protected override render() {
    const { box, wipe } = this.viewing;
    const percent = Math.round(wipe * 100);
    return html`<div
      role="slider"
      tabindex="0"
      aria-label="Wipe"
      aria-valuenow=${percent}
      aria-valuemin="0"
      aria-valuemax="100"
      aria-valuetext="Original up to ${percent} %"
      ${place({ left: `${box.x + wipe * box.width}px`, top: `${box.y}px`, height: `${box.height}px` })}
      @pointerdown=${this.grab}
      @keydown=${this.key}
    ></div>`;
  }

  private grab(event: PointerEvent): void {
    event.preventDefault();
    event.stopPropagation();
    const line = event.currentTarget as HTMLElement;
    line.focus();
    line.setPointerCapture(event.pointerId);
    const move = (moved: PointerEvent) => this.set(this.viewing.wipe + moved.movementX / this.viewing.box.width);
    line.addEventListener('pointermove', move);
    const end = () => line.removeEventListener('pointermove', move);
    line.addEventListener('lostpointercapture', end, { once: true });
  }

  private key(event: KeyboardEvent): void {
    const steps = { ArrowLeft: -0.01, ArrowRight: 0.01, PageDown: -0.1, PageUp: 0.1, Home: -1, End: 1 };
    const step = steps[event.key as keyof typeof steps];
    if (step === undefined) return;
    event.preventDefault();
    event.stopPropagation();
    this.set(this.viewing.wipe + step);
  }

  private set(wipe: number): void {
    this.viewing.set({ wipe: clamped(wipe, 0, 1) });
  }
}
