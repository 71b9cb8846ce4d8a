// Redraws an element when what it shows tells of a "change".
import type { ReactiveController, ReactiveControllerHost } from 'lit';

export class Follow implements ReactiveController {
  private followed: EventTarget | undefined;
  private readonly redraw = () => this.host.requestUpdate();

  constructor(private readonly host: ReactiveControllerHost, private readonly target: () => EventTarget | undefined) {
    host.addController(this);
  }

  hostConnected(): void {
    this.follow(this.target());
  }

  hostDisconnected(): void {
    this.follow(undefined);
  }

  hostUpdate(): void {
    this.follow(this.target());
  }

  private follow(target: EventTarget | undefined): void {
    if (target === this.followed) return;
    this.followed?.removeEventListener('change', this.redraw);
    target?.addEventListener('change', this.redraw);
    this.followed = target;
  }
}
